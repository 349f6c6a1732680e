#include "ui/longwork.h"

#include "ui/button.h"
#include "ui/desk.h"
#include "ui/form.h"
#include "ui/frame.h"
#include "ui/label.h"

#include <algorithm>
#include <chrono>
#include <exception>

namespace merchantry::ui {
namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr auto kMoment = std::chrono::milliseconds(200);
constexpr int kDone = 100;

class frmProgress : public Form {
public:
    explicit frmProgress(Desk& desk) : Form(desk, "frmProgress", "Please wait") {
        setFixedSize();
        cmdStop.isCancel = true;
        cmdStop.click = [this] { stopped = true; };
        setLayout(column({at(lblWhat).wide(56), at(prgWork), buttons({stretch(), at(cmdStop)})}));
    }
    void work(const std::string& what, const std::function<int()>& oneStep, const std::function<std::string()>& words) {
        step_ = oneStep;
        words_ = words;
        lblWhat.setCaption(what);
        desk().showModal(*this);
        if (failure)
            std::rethrow_exception(failure);
    }
    bool stopped = false;
    std::exception_ptr failure;

private:
    void Form_Activate() override {
        try {
            for (int done = 0; !stopped && done < kDone;) {
                done = step_();
                prgWork.set(std::max(0, done), done < 0 ? 0 : kDone);
                if (words_)
                    lblWhat.setCaption(words_());
                desk().yield();
            }
        } catch (const std::exception&) {
            failure = std::current_exception();
        }
        finished_ = true;
        unload();
    }
    // The close box stops the work; the window goes when the work has ended.
    void Form_Unload(bool& cancel) override {
        stopped = stopped || !finished_;
        cancel = !finished_;
    }

    Label lblWhat{*this, "lblWhat"};
    ProgressBar prgWork{*this, "prgWork"};
    Button cmdStop{*this, "cmdStop", "&Stop"};
    std::function<int()> step_;
    std::function<std::string()> words_;
    bool finished_ = false;
};

} // namespace

bool longWork(Desk& desk, const std::string& what, const std::function<int()>& step, const std::function<std::string()>& words) {
    for (const auto end = SteadyClock::now() + kMoment; SteadyClock::now() < end;)
        if (step() >= kDone)
            return true;
    auto& progress = desk.newForm<frmProgress>();
    progress.work(what, step, words);
    return !progress.stopped;
}

} // namespace merchantry::ui
