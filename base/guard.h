#pragma once

#include <utility>

namespace merchantry {

// Puts a value back when its scope ends, however that happens.
//
//   const Restore sink(sink_, &collector); // another sink until the end of this block
template <class T> class Restore {
public:
    explicit Restore(T& value) : value_(value), before_(value) {}
    template <class U> Restore(T& value, U&& now) : value_(value), before_(std::exchange(value, std::forward<U>(now))) {}
    ~Restore() { value_ = std::move(before_); }
    Restore(const Restore&) = delete;
    Restore& operator=(const Restore&) = delete;

private:
    T& value_;
    T before_;
};

// Does something when its scope ends, however that happens. Requires: what it does throws nothing.
template <class F> class AtEnd {
public:
    explicit AtEnd(F what) : what_(std::move(what)) {}
    ~AtEnd() { what_(); }
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;

private:
    F what_;
};

// Undoes what is half done when its scope ends before keep() was called. Requires: what it does throws nothing.
template <class F> class Undo {
public:
    explicit Undo(F what) : what_(std::move(what)) {}
    ~Undo() {
        if (!kept_)
            what_();
    }
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;

    void keep() { kept_ = true; }

private:
    F what_;
    bool kept_ = false;
};

} // namespace merchantry
