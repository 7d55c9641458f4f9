#include "platform/win32/controls_context.h"

#include <string>

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {
namespace {

/// The manifest's context, made once and released with the module.
class Manifest {
public:
    Manifest() noexcept {
        ACTCTXW request = {};
        request.cbSize = sizeof request;
        request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        request.hModule = module_instance();
        // ISOLATIONAWARE_NOSTATICIMPORT_MANIFEST_RESOURCE_ID: unlike 2, left alone when the library is loaded.
        request.lpResourceName = MAKEINTRESOURCEW(3);
        context_ = CreateActCtxW(&request);
    }
    Manifest(const Manifest&) = delete;
    Manifest& operator=(const Manifest&) = delete;
    ~Manifest() {
        if (exists()) ReleaseActCtx(context_);
    }
    bool exists() const noexcept { return context_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const noexcept { return context_; }

private:
    HANDLE context_;
};

CommonControls load_common_controls() {
    const LateLibrary library(u"comctl32.dll");
    return {library.function<decltype(InitCommonControlsEx)>("InitCommonControlsEx"),
            library.function<decltype(ImageList_Create)>("ImageList_Create"),
            library.function<decltype(ImageList_ReplaceIcon)>("ImageList_ReplaceIcon"),
            library.function<decltype(ImageList_Destroy)>("ImageList_Destroy")};
}

}  // namespace

const CommonControls& common_controls() {
    static const CommonControls controls = load_common_controls();
    return controls;
}

ControlsContext::ControlsContext() {
    static const Manifest manifest;
    active_ = manifest.exists() && ActivateActCtx(manifest.get(), &cookie_);
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES};
    common_controls().init(&classes);
}

ControlsContext::~ControlsContext() {
    if (active_) DeactivateActCtx(0, cookie_);
}

}  // namespace vex::platform::win32
