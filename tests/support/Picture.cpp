#include "tests/support/Picture.h"

#include <algorithm>
#include <fstream>

namespace test {

namespace {

using Bytes = std::string;

Bytes BigEndian(uint32_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
            static_cast<char>(value >> 8), static_cast<char>(value)};
}

uint32_t Crc(const Bytes& bytes) {
    uint32_t crc = ~0u;
    for (const unsigned char byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320u : 0);
    }
    return ~crc;
}

uint32_t Adler(const Bytes& bytes) {
    uint32_t low = 1;
    uint32_t high = 0;
    for (const unsigned char byte : bytes) {
        low = (low + byte) % 65521;
        high = (high + low) % 65521;
    }
    return high << 16 | low;
}

Bytes Chunk(const Bytes& name, const Bytes& data) {
    return BigEndian(static_cast<uint32_t>(data.size())) + name + data +
           BigEndian(Crc(name + data));
}

// A zlib stream of stored blocks: nothing here depends on a compression library.
Bytes Stored(const Bytes& data) {
    constexpr size_t kBlock = 65535;
    Bytes stream = "\x78\x01";
    for (size_t at = 0; at < data.size(); at += kBlock) {
        const size_t size = std::min(kBlock, data.size() - at);
        stream += at + size == data.size() ? '\1' : '\0';
        stream += {static_cast<char>(size), static_cast<char>(size >> 8), static_cast<char>(~size),
                   static_cast<char>(~size >> 8)};
        stream += data.substr(at, size);
    }
    return stream + BigEndian(Adler(data));
}

} // namespace

size_t Picture::Count(uint32_t colour) const {
    return static_cast<size_t>(std::count(pixels.begin(), pixels.end(), colour));
}

bool Picture::SavePng(const std::string& path) const {
    Bytes rows;
    for (int y = 0; y < height; ++y) {
        rows += '\0'; // no filter
        for (int x = 0; x < width; ++x)
            rows += BigEndian(At(x, y)).substr(1);
    }
    constexpr char kEightBitColour[] = {8, 2, 0, 0, 0};
    const Bytes header = BigEndian(static_cast<uint32_t>(width)) +
                         BigEndian(static_cast<uint32_t>(height)) + Bytes(kEightBitColour, 5);
    std::ofstream file(path, std::ios::binary);
    file << "\x89PNG\r\n\x1a\n"
         << Chunk("IHDR", header) << Chunk("IDAT", Stored(rows)) << Chunk("IEND", "");
    return file.good();
}

} // namespace test
