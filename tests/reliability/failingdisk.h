#pragma once

namespace merchantry {

// A disk of which one call fails: as long as the object stands, the so-manieth call that opens, reads, writes, sizes, syncs, renames or
// removes a file or makes a folder does nothing and gives an error, in SQLite's own layer and in the program. One at a time.
class FailingDisk {
public:
    // The number of the call, from 1.
    explicit FailingDisk(int call);
    ~FailingDisk();
    FailingDisk(const FailingDisk&) = delete;
    FailingDisk& operator=(const FailingDisk&) = delete;

    // Whether it came to that call.
    bool failed() const;
};

} // namespace merchantry
