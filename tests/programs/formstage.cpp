#include "tests/programs/formstage.h"

#include "app/storefile.h"
#include "programs/screens.h"
#include "programs/storehost.h"

#include <QTemporaryDir>

#include <sstream>

namespace merchantry::programs {

std::string playEveryForm(FormStage& stage) {
    const QTemporaryDir folder;
    const std::filesystem::path store = folder.filePath(QStringLiteral("empty.store")).toStdString();
    app::createStoreFile(store, {}, [](int) {});
    ui::play::PlayOptions options;
    options.scripts = {"tests/programs/windows.play"};
    options.stage = &stage;
    std::ostringstream transcript;
    const int code = ui::play::runPlays(
        options, [&](const std::filesystem::path&) { return std::make_unique<StoreHost>(store, true); }, transcript);
    std::string wrong = code == 0 ? "" : transcript.str();
    for (const Screen& screen : screens())
        if (!stage.seen.contains(screen.name))
            wrong += std::string(screen.name) + " is not opened by the script\n";
    return wrong;
}

} // namespace merchantry::programs
