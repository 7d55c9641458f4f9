// One run of the simulated host.
#include "simulator/session.h"

#include <algorithm>
#include <iostream>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/private_files.h"
#include "simulator/class_library.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

using ServerFunction = HRESULT(STDAPICALLTYPE*)();

/// Reads a member of the catalogue, which answers what the plug-in's contract says.
com::Variant ask(IDispatch& catalogue, const std::u16string& member, VARTYPE type,
                 std::initializer_list<com::Variant> index = {}) {
    com::Variant answer = call_late(catalogue, member, index);
    if (answer.type() != type) throw RuntimeError(kTypeMismatch);
    return answer;
}

void load_data(Host& host, const std::filesystem::path& unit_file) {
    host.display_file = host.machine.writable_path(Host::kDisplayFile);
    host.displays_changed = !std::filesystem::exists(host.display_file);
    if (!host.displays_changed)
        host.displays = Displays::parse(host.display_file.string(), read_file(host.display_file));
    if (std::filesystem::exists(unit_file)) host.units = Units::parse(unit_file.string(), read_file(unit_file));
}

}  // namespace

PluginHost::PluginHost(const std::filesystem::path& library) : library_(library) {
    const HRESULT result = library_.function<ServerFunction>("DllRegisterServer")();
    if (FAILED(result)) throw RuntimeError(result, u"the plug-in does not register itself");
    const auto catalogue = create_object(u"vexFirmWarePlugin.PluginData");
    const std::int16_t total = ask(*catalogue, u"TotalPlugins", VT_I2).get().iVal;
    if (total < 1) throw RuntimeError(kSubscriptOutOfRange, u"the plug-in offers no feature");
    for (std::int16_t i = total; i-- > 0;) {
        const auto index = com::Variant::int16(i);
        for (const char16_t* text : {u"PluginDescription", u"PluginDescriptiveName"})
            ask(*catalogue, text, VT_BSTR, {index});
        ask(*catalogue, u"PluginPic", VT_DISPATCH, {index});
        entry_class_ = com::view(ask(*catalogue, u"PluginNames", VT_BSTR, {index}).get().bstrVal);
    }
}

void PluginHost::start(IDispatch* frame) {
    const auto entry = create_object(entry_class_);
    if (frame == nullptr) {
        call_late(*entry, u"StartPlugin");
        return;
    }
    // By reference, as hosts hand over their frame. It stays ours.
    IDispatch* given = frame;
    call_late(*entry, u"StartFrameFeature", {com::Variant::object_reference(&given)});
    if (given != frame) throw RuntimeError(kAutomationError, u"the plug-in replaced the host's object");
}

bool PluginHost::can_unload() const {
    CoFreeUnusedLibraries();
    return library_.function<ServerFunction>("DllCanUnloadNow")() == S_OK;
}

std::string message_of(const std::exception& error) {
    const auto* const known = dynamic_cast<const RuntimeError*>(&error);
    if (known == nullptr) return error.what();
    // The number of what simply went wrong says nothing more.
    const std::string text = to_utf8(known->description());
    return known->number() == kAutomationError ? text : text + " (error " + std::to_string(known->number()) + ")";
}

ExitStatus run_host(Machine& machine, const std::filesystem::path& data, const std::filesystem::path& plugin_library,
                    bool quiet, std::ostream& out, std::ostream& errors,
                    const std::function<ExitStatus(Host& host, PluginHost& plugin)>& work) {
    Trace trace(out, quiet);
    Host host(trace, machine);
    const std::filesystem::path unit_file = data / "Units.dat";
    ExitStatus status = kBadUsage;
    bool left_behind = false;
    try {
        load_data(host, unit_file);
        const HostClasses classes(host);
        PluginHost plugin(plugin_library);
        status = work(host, plugin);
        host.save_displays();
        platform::replace_private_file(unit_file, host.units.text());
        if (!plugin.can_unload()) {
            errors << "the plug-in still has living objects\n";
            left_behind = true;
        }
    } catch (const std::exception& error) {
        errors << message_of(error) << '\n';
        return kBadUsage;
    }
    if (host.lifetime.objects() != 0) {
        errors << host.lifetime.objects() << " of the host's objects were not released\n";
        left_behind = true;
    }
    return status == kPassed && left_behind ? kFailed : status;
}

Session::Session(const CommandLine& options, const std::filesystem::path& program_folder, const char* plugin_file)
    : options_(options),
      plugin_(options.plugin.value_or(program_folder / plugin_file)),
      samples_(program_folder / "samples") {
    if (!options_.data) private_.emplace();
    data_ = options_.data ? *options_.data : private_->path();
}

ExitStatus Session::play(const std::string& file, std::ostream& out, std::ostream& errors) {
    const char* const input = "standard input";
    if (file == "-") return play_text(input, read_all(std::cin, input), {}, out, errors);
    return play_text(file, read_file(file), std::filesystem::path(file).parent_path(), out, errors);
}

ExitStatus Session::play_text(const std::string& name, const std::string& text, const std::filesystem::path& folder,
                              std::ostream& out, std::ostream& errors) {
    const Scenario scenario = parse_scenario(name, text, folder);
    prepare(out);
    return run_host(machine(), data_, plugin_, options_.quiet, out, errors, [&](Host& host, PluginHost& plugin) {
        const ExitStatus status = ScenarioPlayer(scenario, host, screen(), plugin, errors, folder).play();
        if (out.flush()) return status;
        errors << "the trace cannot be written\n";
        return status == kPassed ? kFailed : status;
    });
}

ExitStatus Session::try_out(std::ostream& summary, std::ostream& errors,
                            const std::function<ExitStatus(Host& host, PluginHost& plugin, bool fresh)>& work) {
    std::ostream no_trace(nullptr);
    return run_host(machine(), data_, plugin_, true, no_trace, errors, [&](Host& host, PluginHost& plugin) {
        const bool fresh = host.displays.size() == 0;
        if (fresh) {
            const std::filesystem::path file = samples_ / "trial.scn";
            const Scenario sample = parse_scenario(file.string(), read_file(file), samples_);
            const ExitStatus status = ScenarioPlayer(sample, host, screen(), plugin, errors, samples_).play();
            if (status != kPassed) return status;
        }
        const std::vector<std::u16string> before = host.unit_lines();
        const ExitStatus status = work(host, plugin, fresh);
        std::size_t unchanged = 0;
        for (const std::u16string& line : host.unit_lines()) {
            if (std::ranges::find(before, line) != before.end()) {
                ++unchanged;
            } else {
                summary << to_utf8(line) << '\n';
            }
        }
        if (unchanged > 0) summary << unchanged << (unchanged == 1 ? " unit has" : " units have") << " not changed\n";
        return status;
    });
}

ExitStatus Session::start(PluginHost& plugin, std::ostream& errors) {
    try {
        plugin.start();
        return kPassed;
    } catch (const RuntimeError& error) {
        errors << "the plug-in raised error " << error.number() << ": " << to_utf8(error.description()) << '\n';
        return kFailed;
    }
}

}  // namespace vex::sim
