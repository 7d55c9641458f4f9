// An owning reference to a COM object.
#pragma once

#include <cstddef>
#include <utility>

#include "com/interface_id.h"

namespace vex::com {

/// Owns one reference to an object, or nothing. Copying adds a reference, the destructor releases it.
template <class Interface>
class ComPtr {
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}
    /// Shares `object`: adds a reference of its own.
    explicit ComPtr(Interface* object) noexcept : object_(object) {
        if (object_ != nullptr) object_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPtr() {
        if (object_ != nullptr) object_->Release();
    }

    /// Takes over a reference that the caller owns.
    static ComPtr adopt(Interface* object) noexcept {
        ComPtr result;
        result.object_ = object;
        return result;
    }

    Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    Interface& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Gives the reference up to the caller.
    Interface* detach() noexcept { return std::exchange(object_, nullptr); }
    void reset() noexcept { *this = ComPtr(); }

    /// For out-parameters: releases what is held and offers the empty place.
    Interface** put() noexcept {
        reset();
        return &object_;
    }
    void** put_void() noexcept { return reinterpret_cast<void**>(put()); }

    /// The same object under another interface, or nothing when it does not offer it.
    template <class Other>
    ComPtr<Other> query() const noexcept {
        ComPtr<Other> result;
        if (object_ == nullptr ||
            FAILED(object_->QueryInterface(InterfaceTraits<Other>::id(), result.put_void()))) {
            return {};
        }
        return result;
    }

private:
    Interface* object_ = nullptr;
};

}  // namespace vex::com
