#include "simulator/comparison.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <vector>

#include "simulator/words.h"

namespace vex::sim {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// "OBJECT." of a line that tells what one object is asked or says; otherwise empty.
std::string object_of(const std::string& line) {
    const std::size_t begin = line.find(' ') + 1;
    const std::size_t end = line.find_first_of(".\" ", begin);
    return begin != 0 && end != line.npos && line[end] == '.' ? line.substr(begin, end + 1 - begin) : std::string();
}

/// What comes several times in a row as one, and what follows of one object on its line, as far as that is wide enough.
std::string folded(const std::string& text) {
    constexpr std::size_t kWidth = 120;
    const std::vector<std::string> lines = lines_of(text);
    std::vector<std::string> result;
    std::string last_object;
    for (auto line = lines.begin(); line != lines.end();) {
        const auto next = std::find_if(line, lines.end(), [&line](const std::string& other) { return other != *line; });
        const std::string times = next - line > 1 ? " (" + std::to_string(next - line) + " times)" : std::string();
        const std::string object = object_of(*line);
        std::string more = "; " + *line + times;
        more.erase(more.find(object), object.size());
        if (!object.empty() && object == last_object && result.back().size() + more.size() <= kWidth) {
            result.back() += more;
        } else {
            result.push_back(*line + times);
        }
        last_object = object;
        line = next;
    }
    std::string whole;
    for (const std::string& line : result) whole += line + '\n';
    return whole;
}

/// From the first line that differs to the last.
std::string difference(const std::string& file, const std::string& recorded, const std::string& found) {
    const std::vector<std::string> before = lines_of(recorded);
    const std::vector<std::string> now = lines_of(found);
    const auto [gone, come] = std::mismatch(before.begin(), before.end(), now.begin(), now.end());
    const auto [gone_end, come_end] = std::mismatch(before.rbegin(), std::make_reverse_iterator(gone), now.rbegin(),
                                                    std::make_reverse_iterator(come));
    std::string text = "  " + file + ", line " + std::to_string(gone - before.begin() + 1) + ":\n";
    std::for_each(gone, gone_end.base(), [&text](const std::string& line) { text += "  -" + line + '\n'; });
    std::for_each(come, come_end.base(), [&text](const std::string& line) { text += "  +" + line + '\n'; });
    return text;
}

/// What is not as recorded; empty: everything is.
std::string compare(const CommandLine& options, const fs::path& scenario, const PlayScenario& play) {
    std::ostringstream trace, messages;
    const ExitStatus status = play(options, scenario.string(), trace, messages);
    std::string faults;
    if (status != kPassed) faults += "  exit status " + std::to_string(status) + '\n' + messages.str();
    const auto check = [&](const char* extension, const std::string& found, bool always) {
        fs::path file = scenario;
        file.replace_extension(extension);
        if (options.record) {
            fs::remove(file);
            if (always || !found.empty()) replace_file(file, found);
            return;
        }
        const std::string recorded = always || fs::exists(file) ? read_file(file) : std::string();
        if (recorded != found) faults += difference(file.string(), recorded, found);
    };
    check(".trace", folded(trace.str()), true);
    check(".errors", messages.str(), false);
    return faults;
}

}  // namespace

ExitStatus compare_scenarios(const CommandLine& options, const PlayScenario& play, std::ostream& out) {
    std::vector<fs::path> files;
    for (const std::string& file : options.scenarios) files.push_back(fs::absolute(file));
    CommandLine whole = options;
    if (whole.data) whole.data = fs::absolute(*whole.data);
    if (whole.plugin) whole.plugin = fs::absolute(*whole.plugin);
    std::size_t failed = 0;
    for (const fs::path& file : files) {
        // Said first: where a run ends with the program, its scenario is known.
        out << file.filename().string() << ": " << std::flush;
        std::string faults;
        try {
            // Names in messages and relative files are then the same wherever the folder lies.
            fs::current_path(file.parent_path());
            faults = compare(whole, file.filename(), play);
        } catch (const std::exception& error) {
            faults = std::string("  ") + error.what() + '\n';
        }
        out << (faults.empty() ? "as recorded\n" : "FAILED\n" + faults);
        if (!faults.empty()) ++failed;
    }
    out << files.size() - failed << " scenarios passed, " << failed << " failed\n";
    return failed == 0 ? kPassed : kFailed;
}

}  // namespace vex::sim
