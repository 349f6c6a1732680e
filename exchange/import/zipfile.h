#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

struct zip;
struct zip_file;

namespace merchantry::exchange {

// A packed file whose parts are read from their beginning. Throws FileRefused for what cannot be opened or unpacked, in a sentence for the
// user. It counts what it unpacks and stops beyond kMostBytes, whatever the file says of its size.
class ZipFile {
public:
    explicit ZipFile(const std::filesystem::path& file);

    bool has(const std::string& part) const { return indexOf(part) >= 0; }
    // As the file says; 0 where there is no such part.
    std::int64_t sizeOf(const std::string& part) const;
    // The whole part. Throws where there is none.
    std::string text(const std::string& part);

    // A part being unpacked. The file must outlive it.
    class Part {
    public:
        Part(ZipFile& file, const std::string& part);
        // Adds the next bytes to the text; false at the end.
        bool read(std::string& text);
        std::int64_t bytes() const { return bytes_; }

    private:
        struct Close {
            void operator()(zip_file* part) const;
        };
        ZipFile& file_;
        std::unique_ptr<zip_file, Close> part_;
        std::int64_t bytes_ = 0;
    };

private:
    std::int64_t indexOf(const std::string& part) const;
    void checkParts() const;
    void count(std::int64_t bytes);

    struct Discard {
        void operator()(zip* archive) const;
    };
    std::unique_ptr<zip, Discard> zip_;
    std::int64_t unpacked_ = 0;
};

} // namespace merchantry::exchange
