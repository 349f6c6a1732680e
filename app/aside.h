#pragma once

#include "app/db/session.h"
#include "ui/desk.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace merchantry::app {

// What a work on a thread of its own and those who wait for it tell each other.
struct AsideState {
    std::atomic<bool> stop = false; // wanted by the user
    std::atomic<int> rows = 0;      // so far
    std::atomic<int> percent = -1;  // below 0 while it is not known
};

// A session of its own on the application's store, for such a work: where it has to wait for another program, nobody is asked.
std::unique_ptr<db::Session> sessionAside();

// Runs the work on a thread of its own while the desk goes on, with progress and a Stop once it takes longer than a moment. The work may
// touch nothing that the desk's thread changes meanwhile. `interrupt` is called, perhaps several times, when the work should stop; it must
// be callable from another thread. True when the work came to its end; false when the user stopped it. What the work throws is thrown here.
bool runAside(ui::Desk& desk, const std::string& what, const std::function<void(AsideState&)>& work,
              const std::function<void()>& interrupt = {});

} // namespace merchantry::app
