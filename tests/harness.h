// Test harness shared by every family: guarded buffers, padded images with
// canaries, random fills and whole-buffer comparison.
//
// A plane is one mapping whose last byte sits right before an unreadable page
// (or, GuardBefore, whose first byte sits right after one), so any read or
// write past a row's end or before its start faults. Rows are padded: the
// bytes between rows are canaries. A test builds the expected buffer as a copy
// of the destination before the call and lets the reference write only the
// pixels it owns; comparing whole mappings then checks pixels, kept samples and
// canaries at once.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "krocc.h"

namespace kt {

enum class Guard { After, Before };

class GuardedBuf {
public:
    GuardedBuf() = default;
    GuardedBuf(size_t size, Guard g) { alloc(size, g); }
    GuardedBuf(const GuardedBuf&) = delete;
    GuardedBuf& operator=(const GuardedBuf&) = delete;
    GuardedBuf(GuardedBuf&& o) noexcept { *this = std::move(o); }
    GuardedBuf& operator=(GuardedBuf&& o) noexcept {
        release();
        map_ = o.map_;
        mapSize_ = o.mapSize_;
        data_ = o.data_;
        size_ = o.size_;
        o.map_ = nullptr;
        return *this;
    }
    ~GuardedBuf() { release(); }

    void alloc(size_t size, Guard g) {
        release();
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t body = (size + page - 1) / page * page;
        mapSize_ = body + page;
        void* m = mmap(nullptr, mapSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m == MAP_FAILED) {
            std::perror("mmap");
            std::abort();
        }
        map_ = static_cast<uint8_t*>(m);
        size_ = size;
        if (g == Guard::After) {
            mprotect(map_ + body, page, PROT_NONE);
            data_ = map_ + body - size;
        } else {
            mprotect(map_, page, PROT_NONE);
            data_ = map_ + page;
        }
    }
    uint8_t* data() const { return data_; }
    size_t size() const { return size_; }

private:
    void release() {
        if (map_) munmap(map_, mapSize_);
        map_ = nullptr;
    }
    uint8_t* map_ = nullptr;
    size_t mapSize_ = 0;
    uint8_t* data_ = nullptr;
    size_t size_ = 0;
};

inline std::mt19937& rng() {
    static std::mt19937 r(12345);
    return r;
}

inline void fillRandom(uint8_t* p, size_t n) {
    auto& r = rng();
    for (size_t i = 0; i < n; ++i) p[i] = static_cast<uint8_t>(r() >> 13);
}

// One image plane of `height` rows of `rowBytes` bytes, `pad` canary bytes after
// each row but the last (whose end is the guard). Steps may be given negative:
// rows then run from high addresses down.
struct Plane {
    GuardedBuf buf;
    int rowBytes = 0, height = 0, step = 0;

    Plane() = default;
    Plane(int rowBytes_, int height_, int pad, Guard g, bool negativeStep = false) {
        rowBytes = rowBytes_;
        height = height_;
        const int absStep = rowBytes + pad;
        buf.alloc(static_cast<size_t>(absStep) * (height - 1) + rowBytes, g);
        fillRandom(buf.data(), buf.size());
        step = negativeStep ? -absStep : absStep;
    }
    // Address of the region's first pixel (row 0).
    uint8_t* origin() const {
        return step >= 0 ? buf.data() : buf.data() + static_cast<size_t>(-step) * (height - 1);
    }
    uint8_t* row(int y) const { return origin() + static_cast<std::ptrdiff_t>(y) * step; }
    // A snapshot of the whole mapping, for "expected" images.
    std::vector<uint8_t> snapshot() const { return {buf.data(), buf.data() + buf.size()}; }
    uint8_t* rowIn(std::vector<uint8_t>& snap, int y) const {
        return snap.data() + (row(y) - buf.data());
    }
};

// First differing byte of a plane against its expected snapshot, as a message.
inline std::string diffPlane(const Plane& p, const std::vector<uint8_t>& expect, int channels) {
    for (size_t i = 0; i < expect.size(); ++i) {
        if (p.buf.data()[i] == expect[i]) continue;
        const std::ptrdiff_t off = (p.buf.data() + i) - p.origin();
        const int absStep = p.step < 0 ? -p.step : p.step;
        std::ptrdiff_t y = off / p.step, inRow = off - y * p.step;
        if (inRow < 0) {
            y -= 1;
            inRow += absStep;
        }
        char msg[256];
        std::snprintf(msg, sizeof msg, "byte %zu (row %td, byte %td = pixel %td sample %td%s): got %d want %d", i,
                      y, inRow, inRow / channels, inRow % channels, inRow >= p.rowBytes ? ", padding" : "",
                      p.buf.data()[i], expect[i]);
        return msg;
    }
    return {};
}

// Widths worth sweeping for a kernel whose vector step is `block` pixels.
inline std::vector<int> sweepWidths(int block) {
    std::vector<int> w;
    for (int i = 1; i <= 3 * block + 5; ++i) w.push_back(i);
    for (int i : {64, 95, 127, 128, 129, 255, 257}) w.push_back(i);
    return w;
}

}  // namespace kt
