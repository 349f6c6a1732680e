#include "setup/managers.h"

#include "app/modMain.h"
#include "base/text.h"

#include <algorithm>

namespace merchantry::setup {
namespace {

bool canBeTyped(const std::string& text) {
    return !trimmed(text).empty() && text.front() != ' ' && text.find('\'') == std::string::npos;
}

} // namespace

bool letsIn(const Login& login) {
    return login.manager && canBeTyped(login.name) && canBeTyped(login.password);
}

std::string lastManagerWarning(std::vector<Login> stored, int id, const std::optional<Login>& becomes) {
    if (std::none_of(stored.begin(), stored.end(), letsIn))
        return "";
    const auto own = std::find_if(stored.begin(), stored.end(), [&](const Login& login) { return login.id == id; });
    if (own == stored.end())
        return "";
    const std::string name = own->name;
    if (becomes)
        *own = *becomes;
    else
        stored.erase(own);
    if (std::any_of(stored.begin(), stored.end(), letsIn))
        return "";
    return "The login \"" + name +
           "\" is the last one that opens Merchantry, and it will no longer work after this. Nobody could log in any more. Go on all the "
           "same?";
}

std::vector<Login> storedLogins() {
    std::vector<Login> logins;
    const auto rows = app::openDirect("SELECT ID, Name, Password, ManagerFlag FROM Cashier ORDER BY ID");
    for (; !rows->Eof(); rows->MoveNext())
        logins.push_back({static_cast<int>((*rows)["ID"].Value().toInteger()), (*rows)["Name"].text(), (*rows)["Password"].text(),
                          (*rows)["ManagerFlag"].Value().toFlag()});
    rows->Close();
    return logins;
}

} // namespace merchantry::setup
