// Writes down what dialogs do.
#include "tests/shared/notebook.h"

#include "com/class_factory.h"
#include "com/object.h"
#include "core/digits.h"
#include "core/unicode.h"
#include "platform/system.h"
#include "simulator/class_library.h"

// Where the linker finds these functions in a program, it takes them and not the system's.

bool vex::platform::ordinary_file_exists(const std::u16string& path) {
    test::current_notebook->line("", "is there " + to_utf8(path));
    return test::files_exist;
}

bool vex::platform::start_program(const std::u16string& path) {
    test::current_notebook->line("", "start " + to_utf8(path));
    return test::programs_start;
}

namespace vex::test {
namespace {

std::string in_quotes(std::u16string_view text) { return '"' + to_utf8(text) + '"'; }
std::string hex(forms::Color color) { return to_utf8(digits_of(color, 16, 6)); }

constexpr IID kEvents = {0x1B6B7A52, 0x2E0C, 0x4B7B, {0x8E, 0x2F, 0x33, 0x0D, 0x5C, 0x4A, 0x61, 0x07}};
constexpr DWORD kCookie = 7;

}  // namespace

void Notebook::line(const std::string& who, const std::string& what) {
    part_.clear();
    if (!omitted.contains(who)) text_ += what + '\n';
}

void Notebook::part(const std::string& who, const std::string& of, const std::string& what) {
    if (omitted.contains(who)) return;
    if (part_ != of || text_.empty()) line(who, of);
    text_.insert(text_.size() - 1, what);
    part_ = of;
}

void Screen::run_modal(forms::Form& form, forms::Form* owner) {
    notebook_.line(form.name(), "open " + form.name() + (owner != nullptr ? " over " + owner->name() : ""));
    forms_.push_back(&form);
    form.set_view(this);
    // What loading has made of it, before there was a view to tell.
    for (forms::Control* control : form.controls()) {
        using enum forms::ControlKind;
        if (control->kind() == list_view) {
            rows_.erase(static_cast<forms::ListView*>(control));
            changed(*control, forms::Change::rows);
        }
        if (control->kind() == shape) changed(*control, forms::Change::color);
        if (!control->enabled()) changed(*control, forms::Change::enabled);
        if (!control->visible()) changed(*control, forms::Change::visible);
    }
    form.raise_activate();
    while (form.running()) {
        if (acts.empty()) {
            form.raise_close_request();
            if (form.running()) form.hide();
        } else {
            const auto act = std::move(acts.front());
            acts.pop_front();
            notebook_.end_part();
            act(form);
        }
    }
    if (at_close) at_close(form);
    form.set_view(nullptr);
    forms_.pop_back();
    notebook_.line(form.name(), "close " + form.name());
}

forms::MessageAnswer Screen::message_box(const forms::MessageBox& box) {
    notebook_.line("", "ask " + in_quotes(box.title) + ' ' + in_quotes(box.text) +
                           (box.buttons == forms::MessageButtons::yes_no ? " yes/no" : " ok"));
    return answer;
}

std::optional<std::u16string> Screen::open_file(const forms::OpenFileRequest& request) {
    notebook_.line("", "choose file in " + in_quotes(request.initial_folder) + " named " +
                           in_quotes(request.file_name) + ' ' + in_quotes(request.filter) + ' ' + hex(request.flags));
    return file;
}

void Screen::changed(forms::Control& control, forms::Change change) {
    using forms::Change;
    const auto tell = [&](const std::string& what) { notebook_.line(top().name(), control.name() + what); };
    const auto set = [&](const std::string& value) {
        notebook_.part(top().name(), "set", ' ' + control.name() + '=' + value);
    };
    switch (change) {
        case Change::caption: return tell(": " + to_utf8(control.caption()));
        case Change::enabled: return set(control.enabled() ? "on" : "off");
        case Change::visible: return set(control.visible() ? "shown" : "hidden");
        case Change::value: return set("changed");
        case Change::color: return set(hex(static_cast<forms::Shape&>(control).fill_color()));
        case Change::tab: return set(std::to_string(static_cast<forms::TabPages&>(control).tab()));
        default: break;
    }
    auto& list = static_cast<forms::ListView&>(control);
    if (change == Change::selection) return set(list.selected() ? std::to_string(*list.selected()) : "none");
    std::vector<forms::ListRow>& before = rows_[&list];
    if (list.row_count() < before.size()) tell(" cleared");
    before.resize(list.row_count());
    for (std::size_t i = 0; i < before.size(); ++i) {
        const forms::ListRow& now = list.rows()[i];
        std::string what;
        if (now.text != before[i].text || now.key != before[i].key)
            what += ' ' + in_quotes(now.text) + " key " + in_quotes(now.key) + " tag " + in_quotes(now.tag);
        before[i].sub_items.resize(now.sub_items.size());
        for (std::size_t k = 0; k < now.sub_items.size(); ++k) {
            const forms::ListCell& cell = now.sub_items[k];
            if (cell.text != before[i].sub_items[k].text) what += ' ' + in_quotes(cell.text);
            if (cell.fore_color != before[i].sub_items[k].fore_color) what += " cell " + hex(cell.fore_color);
        }
        if (now.fore_color != before[i].fore_color) what += " text " + hex(now.fore_color);
        if (now.icon != before[i].icon) what += " icon " + in_quotes(list.small_icons->images()[*now.icon].key);
        if (!what.empty()) notebook_.part(top().name(), list.name() + '[' + std::to_string(i) + ']', what);
        before[i] = now;
    }
}

/// An object of any of the host's classes; a control raises its one event to the sink that it is given.
class HostObject final : public com::Object<HostObject, com::Untyped<IDispatch>, IProvideClassInfo2,
                                            IConnectionPointContainer, IConnectionPoint> {
public:
    HostObject(RecordedHost& host, const sim::HostClass& of) : Object(host.objects), host_(host), class_(of) {}

    ~HostObject() { EXPECT_EQ(listeners_, 0) << name_ << " is still connected"; }

    const std::string& name() const { return name_; }

    HRESULT GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) noexcept override {
        const auto member = std::ranges::find(class_.members, std::u16string(*names), &sim::MemberFacts::name);
        // The controls are called by id.
        if (name_.starts_with("vex") || member == class_.members.end()) return DISP_E_UNKNOWNNAME;
        *ids = static_cast<DISPID>(member->id);
        return S_OK;
    }
    HRESULT Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                   UINT*) noexcept override {
        const auto member = std::ranges::find(class_.members, static_cast<std::uint32_t>(id), &sim::MemberFacts::id);
        if (member == class_.members.end()) return DISP_E_MEMBERNOTFOUND;
        const std::string name = to_utf8(member->name);
        const std::string call = name_ + '.' + name;
        const bool puts = flags == DISPATCH_PROPERTYPUT && parameters->cNamedArgs == 1 &&
                          parameters->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT && result == nullptr;
        std::string arguments;
        for (UINT i = parameters->cArgs; i-- > 0;)
            arguments += (arguments.empty() ? "" : ", ") + shown(parameters->rgvarg[i]);
        // What is only read is not written down.
        if (puts) host_.notebook_.part(name_, name_, ' ' + name + '=' + arguments);
        if (flags == DISPATCH_METHOD) host_.notebook_.part(name_, name_, ' ' + name + '(' + arguments + ')');
        if (!puts && flags != DISPATCH_METHOD && flags != (DISPATCH_METHOD | DISPATCH_PROPERTYGET))
            return DISP_E_MEMBERNOTFOUND;
        const com::ComPtr<HostObject> alive(this);
        if (const auto during = host_.during.find(call); during != host_.during.end()) during->second(*parameters);
        if (result == nullptr) return S_OK;
        const auto answer = host_.answers.find(call);
        if (answer != host_.answers.end()) return VariantCopy(result, &answer->second.get());
        if (call == "vexDispTrans.GetSignInfo")
            *result = com::Variant::object(host_.make("HostSignInfo").get()).detach();
        else if (name_ == "vexDispTrans")
            *result = com::Variant::boolean(true).detach();
        return S_OK;
    }

    HRESULT GetClassInfo(ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetGUID(DWORD, GUID* guid) noexcept override {
        *guid = kEvents;
        return S_OK;
    }
    HRESULT EnumConnectionPoints(IEnumConnectionPoints**) noexcept override { return E_NOTIMPL; }
    HRESULT FindConnectionPoint(REFIID, IConnectionPoint** point) noexcept override {
        AddRef();
        *point = this;
        return S_OK;
    }
    HRESULT GetConnectionInterface(IID*) noexcept override { return E_NOTIMPL; }
    HRESULT GetConnectionPointContainer(IConnectionPointContainer**) noexcept override { return E_NOTIMPL; }
    HRESULT Advise(IUnknown* sink, DWORD* cookie) noexcept override {
        *cookie = kCookie;
        ++listeners_;
        return sink->QueryInterface(kEvents, host_.sinks_[name_].put_void());
    }
    // It keeps the sink all the same, and may go on calling it.
    HRESULT Unadvise(DWORD cookie) noexcept override {
        EXPECT_EQ(cookie, kCookie);
        --listeners_;
        return S_OK;
    }
    HRESULT EnumConnections(IEnumConnections**) noexcept override { return E_NOTIMPL; }

private:
    static std::string shown(const VARIANT& value) {
        switch (value.vt) {
            case VT_BSTR: return in_quotes(com::view(value.bstrVal));
            case VT_BYREF | VT_BSTR: return '&' + in_quotes(com::view(*value.pbstrVal));
            case VT_I2: return "I2 " + std::to_string(value.iVal);
            case VT_I4: return "I4 " + std::to_string(value.lVal);
            case VT_R8: return "R8 " + std::to_string(static_cast<int>(value.dblVal));
            case VT_BYREF | VT_DISPATCH: return '&' + static_cast<HostObject*>(*value.ppdispVal)->name();
            default: return "kind " + std::to_string(value.vt);
        }
    }

    RecordedHost& host_;
    const sim::HostClass& class_;
    const std::string name_ = to_utf8(class_.name());
    int listeners_ = 0;
};

RecordedHost::RecordedHost(Notebook& notebook) : notebook_(notebook) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    constexpr platform::RegistryKey kClassesRoot = platform::registry_key(platform::kHkeyClassesRoot);
    for (const sim::HostClass& one : sim::host_classes()) {
        const std::string name = to_utf8(one.name());
        cookies_.push_back(com::offer_class(objects, one.clsid, [this, &one, name] {
            notebook_.part(name, name, " new");
            return com::make_object<HostObject>(*this, one);
        }));
        // Those two are created by class id.
        if (name.starts_with("HostDisplay")) continue;
        OLECHAR text[39];
        StringFromGUID2(one.clsid, text, 39);
        Key::created(kClassesRoot, to_utf8(one.programmatic_id) + "\\CLSID").set_text("", to_utf8(text));
    }
}

RecordedHost::~RecordedHost() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
    EXPECT_EQ(objects.objects(), 0) << "an object of the host was left";
    CoUninitialize();
}

HRESULT RecordedHost::raise(const char* control, const com::Variant& argument, DISPID event, UINT arguments) {
    const com::ComPtr<IDispatch> sink = sinks_[control];
    VARIANTARG place = argument.get();
    DISPPARAMS parameters{&place, nullptr, arguments, 0};
    return sink->Invoke(event, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
}

com::ComPtr<IDispatch> RecordedHost::make(const char* name) {
    const auto one = std::ranges::find(sim::host_classes(), from_utf8(name), &sim::HostClass::name);
    return com::make_object<HostObject>(*this, *one).query<IDispatch>();
}

}  // namespace vex::test
