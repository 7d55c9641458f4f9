// The About box: title, version, the company of the label, a disclaimer, and the way to System Information.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "about/cls_dynamic_labeling.h"
#include "forms/form.h"
#include "support/services.h"

namespace vex {

/// One instance per apartment, shown as often as it is asked for; used on the apartment's thread.
class frmAbout final : public forms::Form {
public:
    /// `services` must outlive the form.
    explicit frmAbout(const Services& services);

    /// Starts the system's System Information program, or says that there is none.
    void StartSysInfo();

    /// Reads the value `SubKeyRef` of the key `KeyName` under the root `KeyRoot` into `KeyVal`: a text as it
    /// is, a number as decimal text; other types leave `KeyVal` as it was. False, with `KeyVal` empty, when
    /// it cannot be read. Raises kOverflow for a number's digits that exceed 32 bits, kTypeMismatch when
    /// `KeyVal` made no number of them.
    bool GetKeyValue(std::int32_t KeyRoot, const std::u16string& KeyName, const std::u16string& SubKeyRef,
                     std::u16string& KeyVal);

private:
    void Form_Load() override;
    void cmdOK_Click();
    void cmdSysInfo_Click();

    clsDynamicLabeling& labeling();
    /// The path of the System Information program, or nothing.
    std::optional<std::u16string> find_system_information();

    const Services& services_;
    /// Made on first use.
    std::optional<clsDynamicLabeling> labeling_;

    forms::Button cmdOK, cmdSysInfo;
    forms::Label lblVersion, lblDescription, lblDisclaimer;
    forms::Line lnSeparator;
};

}  // namespace vex
