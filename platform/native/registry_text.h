// A registry as text: the format in which Windows exports it.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/native/registry_changes.h"

namespace vex::platform::native {

/// The first line of every registry text, with its line break.
inline constexpr std::string_view kRegistryHeader = "Windows Registry Editor Version 5.00\n";

/// What a text is told that does not begin with it.
inline constexpr char kNoHeader[] = "the first line of a registry is missing";

/// A text that is not what it should be. `line` counts from 1.
class RegistryDamage : public std::runtime_error {
public:
    RegistryDamage(std::size_t line, const std::string& reason) : std::runtime_error(reason), line_(line) {}
    std::size_t line() const noexcept { return line_; }

private:
    std::size_t line_;
};

/// Reads a registry text in UTF-8, with either kind of line breaks, from its first line on and in as many
/// pieces as it comes in.
class RegistryReader {
public:
    /// `changes` is told what is read; it outlives the reader.
    explicit RegistryReader(RegistryChanges& changes) : changes_(changes) {}

    /// Reads the next whole lines. Raises RegistryDamage at the first that does not belong; what stood before
    /// it has been told.
    void read(std::string_view text);

    /// The key whose values the next lines would tell; empty for none.
    const std::u16string& current_key() const noexcept { return current_key_; }

private:
    RegistryChanges& changes_;
    std::size_t line_ = 1;
    bool header_seen_ = false;
    std::u16string current_key_;
};

/// Writes a registry text without its header, each value and key on one line of its own.
class RegistryWriter final : public RegistryChanges {
public:
    /// `current_key`: the key whose values the text before tells.
    explicit RegistryWriter(std::u16string current_key = {}) : current_key_(std::move(current_key)) {}

    void key(std::u16string_view path) override;
    void key_deleted(std::u16string_view path) override;
    void value(RegistryValue value) override;
    void value_deleted(std::u16string_view name) override;

    /// Everything that another writer wrote from the start of a text.
    void append(const RegistryWriter& other);

    const std::string& text() const noexcept { return text_; }

private:
    void put_name(std::u16string_view name);

    std::u16string current_key_;
    std::string text_;
};

/// Whether a file's bytes are in UTF-16, as Windows exports a registry.
bool is_utf16_registry(std::string_view bytes);
/// Such bytes in UTF-8.
std::string registry_from_utf16(std::string_view bytes);

}  // namespace vex::platform::native
