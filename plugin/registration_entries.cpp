// The registration as a table.
#include "plugin/registration_entries.h"

#include "core/product.h"
#include "core/unicode.h"
#include "plugin/contract.h"

namespace vex::plugin {
namespace {

/// The system's marshaller for automation interfaces, which works from the type library.
constexpr GUID kAutomationMarshaller = {0x00020424, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

std::string text_of(REFGUID guid) {
    OLECHAR text[39];
    StringFromGUID2(guid, text, 39);
    return to_utf8(reinterpret_cast<const char16_t*>(text));
}

std::string version_text() {
    return std::to_string(kLibrary.major_version) + "." + std::to_string(kLibrary.minor_version);
}

std::string folder_of(const std::string& path) { return path.substr(0, path.find_last_of('\\')); }

constexpr char kServer[] = "InprocServer32";

std::string class_key(const Class& type) { return "CLSID\\" + text_of(type.id); }

RegistrationBranch class_branch(const Class& type, const std::string& programmatic_id, const std::string& module_path) {
    return {class_key(type),
            SELFREG_E_CLASS,
            {
                {"", "", programmatic_id},
                {kServer, "", module_path},
                {kServer, "ThreadingModel", "Apartment"},
                {"ProgID", "", programmatic_id},
                {"TypeLib", "", text_of(kLibrary.id)},
                {"VERSION", "", version_text()},
            },
            {},
            {}};
}

RegistrationBranch programmatic_id_branch(const Class& type, const std::string& programmatic_id) {
    const std::string clsid = text_of(type.id);
    return {programmatic_id, SELFREG_E_CLASS, {{"", "", programmatic_id}, {"CLSID", "", clsid}}, "CLSID", clsid};
}

RegistrationBranch interface_branch(const Interface& description) {
    return {"Interface\\" + text_of(description.id),
            SELFREG_E_TYPELIB,
            {
                {"", "", std::string(description.name)},
                {"ProxyStubClsid32", "", text_of(kAutomationMarshaller)},
                {"TypeLib", "", text_of(kLibrary.id)},
                {"TypeLib", "Version", version_text()},
            },
            {},
            {}};
}

RegistrationBranch type_library_branch(const std::string& module_path, const std::string& platform) {
    const std::string version = version_text();
    return {"TypeLib\\" + text_of(kLibrary.id),
            SELFREG_E_TYPELIB,
            {
                {version, "", product::kProjectDescription},
                // Locale 0: neutral.
                {version + "\\0\\" + platform, "", module_path},
                {version + "\\FLAGS", "", "0"},
                {version + "\\HELPDIR", "", folder_of(module_path)},
            },
            {},
            {}};
}

}  // namespace

std::vector<std::string> server_keys() {
    std::vector<std::string> keys;
    for (const Class& type : kLibrary.classes) keys.push_back(class_key(type) + "\\" + kServer);
    return keys;
}

std::vector<RegistrationBranch> registration_branches(const std::string& module_path,
                                                      const std::string& type_library_platform) {
    std::vector<RegistrationBranch> branches;
    branches.push_back(type_library_branch(module_path, type_library_platform));
    for (const Class& type : kLibrary.classes) {
        const std::string programmatic_id = std::string(kLibrary.name) + "." + std::string(type.name);
        branches.push_back(class_branch(type, programmatic_id, module_path));
        branches.push_back(programmatic_id_branch(type, programmatic_id));
        branches.push_back(interface_branch(type.default_interface));
    }
    return branches;
}

}  // namespace vex::plugin
