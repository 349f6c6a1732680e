#include "programs/desktop.h"

#include "app/configstore.h"
#include "app/db/ado/provider.h"
#include "app/db/server/address.h"
#include "app/serverstore.h"
#include "base/platform/platform.h"
#include "programs/screens.h"
#include "programs/storehost.h"
#include "ui/play/player.h"
#include "ui/qt/formwindow.h"
#include "ui/qt/qtdesk.h"

#include <QApplication>
#include <QLayout>
#include <QPixmap>

#include <iostream>
#include <map>
#include <random>
#include <set>

namespace merchantry::programs {
namespace {

using ui::Form;
using ui::FormWindow;

// Draws the forms of a play in windows, which a play's lines move as a user would.
class WindowStage : public ui::play::Stage {
public:
    WindowStage(ui::QtDesk& painter, std::filesystem::path folder, std::string suffix)
        : painter_(painter), folder_(std::move(folder)), suffix_(std::move(suffix)) {}

    void prepared(Form& form) override { windows_[&form] = new FormWindow(painter_, form); }
    void opened(Form& form) override {
        FormWindow* const window = windows_.at(&form);
        FormWindow* over = windowOf(form.desk().top());
        if (form.desk().floating(form) && over != nullptr && over != window)
            over->embed(*window);
        else
            window->open(nullptr);
    }
    void vanished(Form& form) override {
        if (FormWindow* window = windowOf(&form))
            window->retire();
        windows_.erase(&form);
    }
    void settle() override { QCoreApplication::processEvents(); }
    const ui::TextMeasure* textMeasure() const override { return &painter_.textMeasure(); }
    void picture(Form& form, const std::string& name) override {
        FormWindow* window = windowOf(&form);
        if (window == nullptr || folder_.empty())
            return;
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
        const auto file = folder_ / (name + suffix_ + ".png");
        if (!window->grab().save(QString::fromStdString(file.string())))
            throw std::runtime_error("The picture " + file.string() + " cannot be written.");
        pictured_.insert(form.name());
        lastPicture_ = name;
    }
    std::unique_ptr<ui::PageSink> paper(const std::string& title) override {
        return folder_.empty() ? nullptr : pdf(folder_ / (lastPicture_ + ".pdf"), title);
    }
    std::unique_ptr<ui::PageSink> pdf(const std::filesystem::path& file, const std::string& title) override {
        return painter_.pdf(file, title);
    }
    const std::set<std::string>& pictured() const { return pictured_; }

private:
    FormWindow* windowOf(const Form* form) const {
        const auto found = windows_.find(form);
        return found == windows_.end() ? nullptr : found->second;
    }

    ui::QtDesk& painter_;
    std::filesystem::path folder_;
    std::string suffix_;
    std::map<const Form*, FormWindow*> windows_;
    std::set<std::string> pictured_;
    std::string lastPicture_ = "printed";
};

int play(WindowStage& stage, const std::string& store, const std::vector<std::string>& scripts) {
    ui::play::PlayOptions options;
    options.scripts.assign(scripts.begin(), scripts.end());
    options.stage = &stage;
    return ui::play::runPlays(
        options, [&](const std::filesystem::path&) { return std::make_unique<StoreHost>(store, true); }, std::cout);
}

// Pictures do not depend on the window sizes that this user's windows had.
class NoMemory {
public:
    NoMemory() : folder_(std::filesystem::temp_directory_path() / ("merchantry-windows-" + std::to_string(std::random_device()()))) {
        std::filesystem::create_directories(folder_);
        qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(folder_.string()));
    }
    ~NoMemory() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;

private:
    std::filesystem::path folder_;
};

bool usable(const std::string& store) {
    if (!store.empty() && std::filesystem::exists(store))
        return true;
    std::cerr << "Scripts and pictures want --store with a store file.\n";
    return false;
}

app::DbConfig configFor(const std::string& store) {
    if (app::isServerPlace(store)) {
        const db::server::Address address = db::server::addressOf(db::connectionParts(store));
        return {app::shownPlace(store), address.sourceText(), "1", address.password, "", address.integrated ? "1" : ""};
    }
    const auto path = std::filesystem::absolute(store);
    return {path.stem().string(), path.string(), "1", "", "", ""};
}

} // namespace

ConfigFor::ConfigFor(const std::string& store) {
    if (store.empty())
        return;
    std::random_device random;
    folder_ = std::filesystem::temp_directory_path() / ("merchantry-" + std::to_string(random()));
    std::filesystem::create_directories(folder_);
    file_ = folder_ / "databases.toml";
    app::ConfigStore configurations(file_);
    const app::DbConfig config = configFor(store);
    configurations.put(config);
    configurations.setDefault(config.ConfigName);
    configurations.save();
}

ConfigFor::~ConfigFor() {
    std::error_code ignored;
    if (!folder_.empty())
        std::filesystem::remove_all(folder_, ignored);
}

int playInDesktop(QApplication& application, ui::Tone tone, const std::string& store, const std::vector<std::string>& scripts,
                  const std::string& folder) {
    if (!usable(store))
        return 2;
    if (!folder.empty())
        std::filesystem::create_directories(folder);
    const NoMemory memory;
    ui::QtDesk painter(application, tone);
    WindowStage stage(painter, folder, "");
    return play(stage, store, scripts);
}

int pictureEveryForm(QApplication& application, const std::string& store, const std::string& folder) {
    if (!usable(store))
        return 2;
    std::filesystem::create_directories(folder);
    const NoMemory memory;
    const std::string script = (platform::programFolder() / "demo" / "pictures.play").string();
    for (const auto& [tone, suffix] : {std::pair{ui::Tone::Light, "-light"}, std::pair{ui::Tone::Dark, "-dark"}}) {
        ui::QtDesk painter(application, tone);
        WindowStage stage(painter, folder, suffix);
        if (const int code = play(stage, store, {script}); code != 0)
            return code;
        for (const Screen& screen : screens())
            if (!stage.pictured().contains(screen.name)) {
                std::cerr << "There is no picture of " << screen.name << ".\n";
                return 1;
            }
    }
    return 0;
}

} // namespace merchantry::programs
