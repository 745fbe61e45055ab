// A MemRef owned by a scope: freed on every path out unless released to the caller.
#pragma once

#include "memory/MemRef.h"

class OwnedMemRef {
public:
    explicit OwnedMemRef(MemRef ref) : ref_(ref) {}
    ~OwnedMemRef() { Reset(0); }
    OwnedMemRef(const OwnedMemRef&) = delete;
    OwnedMemRef& operator=(const OwnedMemRef&) = delete;
    MemRef ref() const { return ref_; }
    uint32_t size() const { return ref_ ? GetMemRefSize(ref_) : 0; }
    MemRef Release() {
        const MemRef r = ref_;
        ref_ = 0;
        return r;
    }
    void Reset(MemRef ref) {
        if (ref_) FreeMemRef(ref_);
        ref_ = ref;
    }

private:
    MemRef ref_;
};
