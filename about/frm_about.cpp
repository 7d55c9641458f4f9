// The About box.
#include "about/frm_about.h"

#include <array>
#include <charconv>
#include <exception>
#include <string_view>
#include <system_error>

#include "core/digits.h"
#include "core/product.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/system.h"
#include "support/open_registry_key.h"

namespace vex {
namespace {

constexpr forms::FormDesign kDesign{.name = "frmAbout", .caption = u"About", .width = 5700, .height = 3525};
constexpr char16_t kDescriptionDesignText[] = u"";

std::string_view without_final_null(std::string_view data) {
    if (!data.empty() && data.back() == '\0') data.remove_suffix(1);
    return data;
}

/// The hexadecimal digits of each byte, from the last byte to the first and without padding. So a byte below
/// 0x10 that has higher ones above it gives too few digits; kept, as what is shown depends on it.
std::u16string digits_of_bytes(std::string_view data) {
    std::u16string digits;
    for (auto byte = data.rbegin(); byte != data.rend(); ++byte)
        digits += digits_of(static_cast<unsigned char>(*byte), 16);
    return digits;
}

/// The decimal text of a number that is written in hexadecimal digits, up to 32 bits, which keep their sign as they
/// do wherever the plug-in reads a number from the registry.
std::u16string decimal_of_hexadecimal(const std::u16string& digits) {
    const std::string text = to_utf8(digits);
    std::uint32_t number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    if (error == std::errc::result_out_of_range) throw RuntimeError(kOverflow);
    if (error != std::errc() || end != text.data() + text.size()) throw RuntimeError(kTypeMismatch);
    return decimal_text(static_cast<std::int32_t>(number));
}

}  // namespace

frmAbout::frmAbout(const Services& services) : Form(services.toolkit, kDesign), services_(services) {
    lnSeparator.etched = true;
    cmdOK.is_default = true;
    cmdOK.is_cancel = true;
    lay_out({
        {.control = lblVersion, .name = "lblVersion", .at = {240, 240, 5220, 225}, .text = u"Version"},
        {.control = lblDescription,
         .name = "lblDescription",
         .at = {240, 600, 5220, 900},
         .text = kDescriptionDesignText},
        {.control = lnSeparator, .name = "lnSeparator", .at = {120, 1740, 5460, 0}},
        {.control = lblDisclaimer,
         .name = "lblDisclaimer",
         .at = {240, 1950, 3720, 1395},
         .text = u"Warning: This program is meant for updating the firmware of message displays and for nothing "
                 u"else. Using it for any other purpose may damage a display. It is protected by copyright; making "
                 u"or passing on unauthorized copies, in whole or in part, is not permitted."},
        {.control = cmdOK, .name = "cmdOK", .at = {4200, 1950, 1260, 345}, .text = u"OK", .tab_index = 0},
        {.control = cmdSysInfo,
         .name = "cmdSysInfo",
         .at = {4200, 2400, 1260, 345},
         .text = u"&System Info...",
         .tab_index = 1},
    });
    cmdOK.on_click = [this] { cmdOK_Click(); };
    cmdSysInfo.on_click = [this] { cmdSysInfo_Click(); };
}

void frmAbout::Form_Load() {
    set_form_caption(std::u16string(u"About ") + kApplicationTitle);
    lblVersion.set_caption(u"Version " + decimal_text(product::kMajorVersion) + u"." +
                           decimal_text(product::kMinorVersion));
    // From the design text, not from what an earlier showing of this shared instance left.
    lblDescription.set_caption(kDescriptionDesignText + labeling().CompanyName());
}

void frmAbout::cmdOK_Click() { unload(); }

void frmAbout::cmdSysInfo_Click() { StartSysInfo(); }

clsDynamicLabeling& frmAbout::labeling() {
    if (!labeling_) labeling_.emplace(services_.registry);
    return *labeling_;
}

void frmAbout::StartSysInfo() {
    bool started = false;
    try {
        const auto program = find_system_information();
        started = program && platform::start_program(*program);
    } catch (const std::exception&) {
        // Whatever went wrong, the user is told the same.
    }
    if (!started) {
        toolkit().message_box({kApplicationTitle, u"System Information Is Unavailable At This Time"});
    }
}

std::optional<std::u16string> frmAbout::find_system_information() {
    using platform::kHkeyLocalMachine;
    std::u16string path;
    if (GetKeyValue(kHkeyLocalMachine, u"SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", u"PATH", path)) return path;
    if (!GetKeyValue(kHkeyLocalMachine, u"SOFTWARE\\Microsoft\\Shared Tools Location", u"MSINFO", path)) return {};
    path += u"\\MSINFO32.EXE";
    if (!platform::ordinary_file_exists(path)) return {};
    return path;
}

bool frmAbout::GetKeyValue(std::int32_t KeyRoot, const std::u16string& KeyName, const std::u16string& SubKeyRef,
                           std::u16string& KeyVal) {
    const auto fail = [&KeyVal] {
        KeyVal.clear();
        return false;
    };
    OpenRegistryKey key(services_.registry);
    if (key.open(platform::registry_key(KeyRoot), platform::to_ansi(KeyName), platform::kKeySpecificRights) !=
        platform::kSuccess) {
        return fail();
    }
    std::array<char, 1024> buffer{};
    std::uint32_t type = platform::kRegNone;
    auto size = static_cast<std::uint32_t>(buffer.size());
    if (services_.registry.query_value(key.get(), platform::to_ansi(SubKeyRef).c_str(), type,
                                       reinterpret_cast<std::uint8_t*>(buffer.data()), size) != platform::kSuccess) {
        return fail();
    }
    const std::string_view data = without_final_null({buffer.data(), size});
    if (type == platform::kRegSz) KeyVal = platform::from_ansi(data);
    // The digits go behind the text that the caller had there; kept, though callers pass an empty one.
    if (type == platform::kRegDword) KeyVal = decimal_of_hexadecimal(KeyVal + digits_of_bytes(data));
    return true;
}

}  // namespace vex
