// A registry in memory and in its file, kept the same.
#include "platform/native/registry_store.h"

#include <algorithm>
#include <system_error>

namespace vex::platform::native {
namespace {

/// What a new file begins with.
constexpr std::string_view kPreamble =
    "; The registry of a simulated computer. It may be edited, as long as every line ends in a line break;\n"
    "; later lines win over earlier ones, and comments go when the file is tidied up.\n";

/// Enough to tell apart a file that grew from one that was edited.
constexpr std::size_t kTailSize = 256;

/// Less than this is not worth writing a whole file for.
constexpr std::size_t kLeastSupersededSize = std::size_t{64} * 1024;

std::string new_file_text() { return std::string(kRegistryHeader) + std::string(kPreamble); }

/// The whole lines at the front.
std::string_view whole_lines(std::string_view text) { return text.substr(0, text.rfind('\n') + 1); }

}  // namespace

RegistryStore::RegistryStore(const std::filesystem::path& file, ReloadListener on_reload)
    : on_reload_(std::move(on_reload)),
      tree_(std::make_unique<RegistryTree>()),
      reader_(std::make_unique<RegistryReader>(*tree_)) {
    if (file.empty()) {
        reader_->read(kRegistryHeader);
    } else {
        file_.emplace(file);
    }
}

RegistryTree& RegistryStore::current_tree() {
    if (file_) catch_up();
    return *tree_;
}

void RegistryStore::catch_up() {
    if (!file_->is_open()) {
        if (file_->open()) load();
    } else if (const FileStamp stamp = file_->stamp(); stamp != stamp_) {
        const bool same_file = stamp.device == stamp_.device && stamp.inode == stamp_.inode;
        if (file_->is_replaced()) {
            file_->open();
            load();
        } else if (same_file && has_grown(stamp)) {
            stamp_ = stamp;
            read_whole_lines(file_->read(end_, static_cast<std::size_t>(stamp.size - end_)));
        } else if (same_file && stamp.size == stamp_.size && stamp.modified == stamp_.modified) {
            stamp_ = stamp;
        } else {
            load();
        }
    }
    if (damage_) throw RegistryDamage(*damage_);
}

bool RegistryStore::has_grown(const FileStamp& stamp) const {
    return stamp.size != stamp_.size && stamp.size >= end_ && !damage_ && !foreign_ &&
           file_->read(end_ - tail_.size(), tail_.size()) == tail_;
}

void RegistryStore::load() {
    stamp_ = file_->is_open() ? file_->stamp() : FileStamp();
    damage_.reset();
    auto tree = std::make_unique<RegistryTree>();
    auto reader = std::make_unique<RegistryReader>(*tree);
    std::string bytes = file_->is_open() ? file_->read(0, static_cast<std::size_t>(stamp_.size)) : std::string();
    foreign_ = is_utf16_registry(bytes);
    if (foreign_) bytes = registry_from_utf16(bytes);
    const std::string_view text = foreign_ ? std::string_view(bytes) : whole_lines(bytes);
    try {
        reader->read(text);
        // Only the very first write, when it was cut short, leaves a file without a whole line.
        if (text.empty() && !kRegistryHeader.starts_with(bytes)) throw RegistryDamage(1, kNoHeader);
    } catch (const RegistryDamage& damage) {
        damage_ = damage;
        return;
    }
    end_ = text.size();
    tail_ = text.substr(text.size() - std::min(text.size(), kTailSize));
    rewriting_waits_for_ = 0;
    if (on_reload_) on_reload_(*this, *tree);
    tree_ = std::move(tree);
    reader_ = std::move(reader);
}

void RegistryStore::read_whole_lines(std::string_view text) {
    text = whole_lines(text);
    try {
        reader_->read(text);
    } catch (const RegistryDamage& damage) {
        damage_ = damage;
        return;
    }
    end_ += text.size();
    tail_ += text.substr(text.size() - std::min(text.size(), kTailSize));
    if (tail_.size() > kTailSize) tail_.erase(0, tail_.size() - kTailSize);
}

std::int32_t RegistryStore::update(const std::function<std::int32_t(RegistryTree&, RegistryWriter&)>& work) {
    if (!file_) {
        RegistryWriter writer(reader_->current_key());
        const std::int32_t result = work(*tree_, writer);
        if (result == kSuccess) reader_->read(writer.text());
        return result;
    }
    for (;;) {
        const RegistryFile::Lock lock(*file_);
        catch_up();
        if (foreign_) {
            // The lock was on the file that this replaces.
            rewrite();
            continue;
        }
        RegistryWriter writer(reader_->current_key());
        const std::int32_t result = work(*tree_, writer);
        if (result != kSuccess || writer.text().empty()) return result;
        append(writer.text());
        return result;
    }
}

void RegistryStore::append(const std::string& text) {
    const std::string whole = end_ == 0 ? new_file_text() + text : text;
    file_->append(end_, whole);
    stamp_ = file_->stamp();
    // Memory learns of the change from the text that the file got, as every other process does.
    read_whole_lines(whole);
    if (!pays_to_rewrite()) return;
    try {
        rewrite();
    } catch (const std::exception&) {
        // The change is made; only the file stays longer than it needs to be.
        rewriting_waits_for_ = tree_->superseded_size() + kLeastSupersededSize;
    }
}

bool RegistryStore::pays_to_rewrite() const {
    const std::size_t superseded = tree_->superseded_size();
    return superseded >= kLeastSupersededSize && superseded > end_ / 2 && superseded >= rewriting_waits_for_;
}

void RegistryStore::rewrite() {
    // From the file and not from memory, which does not know what someone may have edited in the middle.
    load();
    if (damage_) throw RegistryDamage(*damage_);
    RegistryWriter writer;
    tree_->tell(writer);
    file_->replace(new_file_text() + writer.text());
    load();
}

void RegistryStore::import(const std::string& bytes) {
    const bool utf16 = is_utf16_registry(bytes);
    const std::string text = utf16 ? registry_from_utf16(bytes) : bytes;
    RegistryWriter lines;
    RegistryReader(lines).read(text);
    update([&lines](RegistryTree&, RegistryWriter& writer) {
        writer.append(lines);
        return kSuccess;
    });
}

}  // namespace vex::platform::native
