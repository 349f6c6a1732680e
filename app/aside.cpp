#include "app/aside.h"

#include "app/db/dberror.h"
#include "app/modMain.h"
#include "base/numbers.h"
#include "ui/longwork.h"

#include <chrono>
#include <future>

namespace merchantry::app {
namespace {

using namespace std::chrono_literals;

// The thread; however the wait for it ends, it has ended too.
class Thread {
public:
    Thread(const std::function<void(AsideState&)>& work, const std::function<void()>& interrupt)
        : interrupt_(interrupt), done_(std::async(std::launch::async, [this, work] { work(state); })) {}
    ~Thread() { stop(); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    bool ended(std::chrono::milliseconds within) const { return done_.wait_for(within) == std::future_status::ready; }
    // A statement that has not begun yet does not hear an interruption: it is told again.
    void stop() {
        if (!done_.valid())
            return;
        state.stop = true;
        do {
            if (interrupt_)
                interrupt_();
        } while (!ended(20ms));
    }
    void get() { done_.get(); }

    AsideState state;

private:
    const std::function<void()>& interrupt_;
    std::future<void> done_;
};

} // namespace

std::unique_ptr<db::Session> sessionAside() {
    const auto& conn = modMain().Conn;
    auto session = conn->provider().open(conn->ConnectionString());
    session->setWaiter(nullptr); // it belongs to the desk's thread
    return session;
}

bool runAside(ui::Desk& desk, const std::string& what, const std::function<void(AsideState&)>& work,
              const std::function<void()>& interrupt) {
    Thread thread(work, interrupt);
    const bool ended = ui::longWork(
        desk, what, [&] { return thread.ended(15ms) ? 100 : std::min(99, thread.state.percent.load()); },
        [&] {
            const int rows = thread.state.rows;
            return rows == 0 ? what : what + " " + withThousands(rows) + " rows";
        });
    if (!ended)
        thread.stop();
    try {
        thread.get();
    } catch (const db::DbError& error) {
        if (error.category() == db::DbError::Category::Cancelled && thread.state.stop)
            return false;
        throw;
    }
    return ended;
}

} // namespace merchantry::app
