#pragma once

#include <optional>
#include <string>
#include <vector>

namespace merchantry::setup {

// What of a cashier decides whether somebody gets into Merchantry with it.
struct Login {
    int id = 0;
    std::string name;
    std::string password;
    bool manager = false;
};

// Whether the login screen lets in whoever types this: managers only, both texts filled, without blanks in front (it takes them off what is
// typed) and without an apostrophe (which breaks its question to the store).
bool letsIn(const Login& login);

// What to ask before a cashier becomes another, or is deleted (nothing): a sentence that names the login which stops working when nobody
// could log in any more. Empty when somebody still can, or when nobody could before.
std::string lastManagerWarning(std::vector<Login> stored, int id, const std::optional<Login>& becomes);

// All cashiers as the store has them now. Throws DbError.
std::vector<Login> storedLogins();

} // namespace merchantry::setup
