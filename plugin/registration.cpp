// The registration as a table, and its writing and removing.
#include "plugin/registration.h"

#include <utility>

#include "core/product.h"
#include "core/unicode.h"
#include "platform/class_keys.h"
#include "plugin/contract.h"

namespace vex::plugin {
namespace {

/// The system's marshaller for automation interfaces, which works from the type library.
constexpr GUID kAutomationMarshaller = {0x00020424, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

std::u16string text_of(REFGUID guid) {
    OLECHAR text[39];
    StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
    return reinterpret_cast<const char16_t*>(text);
}

std::u16string parent_of(const std::u16string& path) {
    const std::size_t end = path.find_last_of(u'\\');
    return end == std::u16string::npos ? std::u16string() : path.substr(0, end);
}

}  // namespace

std::vector<RegistrationEntry> registration_entries(const std::u16string& module_path,
                                                    const std::u16string& type_library_platform) {
    const std::u16string library = text_of(kLibrary.id);
    const std::u16string version =
        from_utf8(std::to_string(kLibrary.major_version) + "." + std::to_string(kLibrary.minor_version));
    std::vector<RegistrationEntry> entries;
    std::u16string shared;
    std::u16string own;
    HRESULT failure = SELFREG_E_TYPELIB;
    const auto branch = [&](const char16_t* shared_key, const std::u16string& own_key, HRESULT result) {
        shared = shared_key;
        own = shared.empty() ? own_key : shared + u"\\" + own_key;
        failure = result;
    };
    const auto entry = [&](const std::u16string& path, const char16_t* name, const std::u16string& text) {
        entries.push_back({shared, path.empty() ? own : own + u"\\" + path, name, text, failure});
    };

    branch(u"TypeLib", library, SELFREG_E_TYPELIB);
    entry(version, u"", from_utf8(product::kProjectDescription));
    // Locale 0: neutral.
    entry(version + u"\\0\\" + type_library_platform, u"", module_path);
    entry(version + u"\\FLAGS", u"", u"0");
    entry(version + u"\\HELPDIR", u"", parent_of(module_path));

    for (const Class& type : kLibrary.classes) {
        const std::u16string programmatic_id = from_utf8(kLibrary.name) + u"." + from_utf8(type.name);
        branch(u"CLSID", text_of(type.id), SELFREG_E_CLASS);
        entry(u"", u"", programmatic_id);
        entry(u"InprocServer32", u"", module_path);
        entry(u"InprocServer32", u"ThreadingModel", u"Apartment");
        entry(u"ProgID", u"", programmatic_id);
        entry(u"TypeLib", u"", library);
        entry(u"VERSION", u"", version);

        branch(u"", programmatic_id, SELFREG_E_CLASS);
        entry(u"", u"", programmatic_id);
        entry(u"CLSID", u"", text_of(type.id));

        branch(u"Interface", text_of(type.default_interface.id), SELFREG_E_TYPELIB);
        entry(u"", u"", from_utf8(type.default_interface.name));
        entry(u"ProxyStubClsid32", u"", text_of(kAutomationMarshaller));
        entry(u"TypeLib", u"", library);
        entry(u"TypeLib", u"Version", version);
    }
    return entries;
}

HRESULT write_registration(std::vector<RegistrationEntry> entries) {
    std::size_t tried = 0;
    const auto take_back = [&] {
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(tried), entries.end());
        remove_registration(std::move(entries));
    };
    try {
        for (const RegistrationEntry& entry : entries) {
            // Counted also when it fails: its key may have been made.
            ++tried;
            if (platform::write_class_text(entry.key, entry.name, entry.text)) continue;
            const HRESULT failure = entry.failure;
            take_back();
            return failure;
        }
    } catch (...) {
        take_back();
        throw;
    }
    return S_OK;
}

HRESULT remove_registration(std::vector<RegistrationEntry> entries) {
    HRESULT result = S_OK;
    for (RegistrationEntry& entry : entries) {
        if (!platform::remove_class_text(entry.key, entry.name) && result == S_OK) result = entry.failure;
        while (entry.key != entry.shared_key) {
            platform::remove_empty_class_key(entry.key);
            // Shortened where it stands, as memory may have ended.
            const std::size_t separator = entry.key.find_last_of(u'\\');
            entry.key.resize(separator == std::u16string::npos ? 0 : separator);
        }
    }
    return result;
}

}  // namespace vex::plugin
