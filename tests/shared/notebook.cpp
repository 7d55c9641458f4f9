// Writes down what dialogs do.
#include "tests/shared/notebook.h"

#include <algorithm>

#include "core/digits.h"
#include "core/unicode.h"
#include "platform/system.h"

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

std::string shown(const VARIANT& value) {
    switch (value.vt) {
        case VT_BSTR: return in_quotes(com::view(value.bstrVal));
        case VT_BYREF | VT_BSTR: return '&' + in_quotes(com::view(*value.pbstrVal));
        case VT_I2: return "I2 " + std::to_string(value.iVal);
        case VT_I4: return "I4 " + std::to_string(value.lVal);
        case VT_R8: return "R8 " + std::to_string(static_cast<int>(value.dblVal));
        case VT_BYREF | VT_DISPATCH: return *value.ppdispVal == nullptr ? "&nothing" : "&object";
        default: return "kind " + std::to_string(value.vt);
    }
}

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

RecordedHost::RecordedHost(Notebook& notebook) : notebook_(notebook) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    side_registry();  // puts it in place
    host_.around_call = [this](const sim::ObjectCall& call, const auto& make_it) { return answer(call, make_it); };
    host_.on_listener = [this](std::u16string_view control, IDispatch& sink, bool listens) {
        if (listens) sinks_[to_utf8(control)] = com::ComPtr<IDispatch>(&sink);
        listeners_ += listens ? 1 : -1;
    };
    classes_.emplace(host_);
}

RecordedHost::~RecordedHost() {
    classes_.reset();
    EXPECT_EQ(listeners_, 0) << "a control is still connected";
    EXPECT_EQ(host_.lifetime.objects(), 0) << "an object of the host was left";
    CoUninitialize();
}

com::Variant RecordedHost::answer(const sim::ObjectCall& call, const std::function<com::Variant()>& make_it) {
    const std::string of = to_utf8(call.class_name), name = to_utf8(call.name());
    if (call.member == nullptr) {
        notebook_.part(of, of, " new");
        return make_it();
    }
    std::string arguments;
    for (UINT i = call.parameters->cArgs; i-- > 0;)
        arguments += (arguments.empty() ? "" : ", ") + shown(call.parameters->rgvarg[i]);
    // Who reads cannot tell properties from methods. What is only read is not written down.
    EXPECT_EQ(call.flags, call.member->kind == sim::kGet ? sim::kGet | sim::kMethod : call.member->kind) << name;
    const std::string member = to_utf8(call.member->name);
    if (call.member->kind == sim::kPut) notebook_.part(of, of, ' ' + member + '=' + arguments);
    if (call.member->kind == sim::kMethod) notebook_.part(of, of, ' ' + member + '(' + arguments + ')');
    if (const auto during_call = during.find(name); during_call != during.end()) during_call->second(*call.parameters);
    if (const auto given = answers.find(name); given != answers.end()) return given->second;
    if (name == "vexDispTrans.GetSignInfo") return com::Variant::object(make(u"HostSignInfo").get());
    return of == "vexDispTrans" ? com::Variant::boolean(true) : com::Variant();
}

HRESULT RecordedHost::raise(const char* control, const com::Variant& argument, DISPID event, UINT arguments) {
    const com::ComPtr<IDispatch> sink = sinks_[control];
    VARIANTARG place = argument.get();
    DISPPARAMS parameters{&place, nullptr, arguments, 0};
    return sink->Invoke(event, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
}

com::ComPtr<IDispatch> RecordedHost::make(const char16_t* name) {
    return std::ranges::find(sim::host_classes(), name, &sim::HostClass::name)->make(host_);
}

}  // namespace vex::test
