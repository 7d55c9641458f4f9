// The program of the simulated host.
#include "simulator/program.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <sstream>

#include "platform/private_files.h"
#include "simulator/scenario.h"
#include "simulator/session.h"
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
    for (auto line = gone; line != gone_end.base(); ++line) text += "  -" + *line + '\n';
    for (auto line = come; line != come_end.base(); ++line) text += "  +" + *line + '\n';
    return text;
}

/// What is not as recorded; empty: everything is.
std::string compare(const CommandLine& options, const fs::path& scenario, MakeSession make) {
    std::ostringstream trace, messages;
    const ExitStatus status = make(options)->play(scenario.string(), trace, messages);
    std::string faults;
    if (status != kPassed) faults += "  exit status " + std::to_string(status) + '\n' + messages.str();
    const auto check = [&](const char* extension, const std::string& found, bool always) {
        fs::path file = scenario;
        file.replace_extension(extension);
        if (options.record) {
            fs::remove(file);
            if (always || !found.empty()) platform::replace_private_file(file, found);
            return;
        }
        const std::string recorded = always || fs::exists(file) ? read_file(file) : std::string();
        if (recorded != found) faults += difference(file.string(), recorded, found);
    };
    check(".trace", folded(trace.str()), true);
    check(".errors", messages.str(), false);
    return faults;
}

ExitStatus compare_scenarios(CommandLine options, MakeSession make) {
    std::vector<fs::path> files;
    for (const std::string& file : options.scenarios) files.push_back(fs::absolute(file));
    if (options.data) options.data = fs::absolute(*options.data);
    if (options.plugin) options.plugin = fs::absolute(*options.plugin);
    std::size_t failed = 0;
    for (const fs::path& file : files) {
        // Said first: where a run ends with the program, its scenario is known.
        std::cout << file.filename().string() << ": " << std::flush;
        std::string faults;
        try {
            // Names in messages and relative files are then the same wherever the folder lies.
            fs::current_path(file.parent_path());
            faults = compare(options, file.filename(), make);
        } catch (const std::exception& error) {
            faults = std::string("  ") + error.what() + '\n';
        }
        std::cout << (faults.empty() ? "as recorded\n" : "FAILED\n" + faults);
        if (!faults.empty()) ++failed;
    }
    std::cout << files.size() - failed << " scenarios passed, " << failed << " failed\n";
    return failed == 0 && std::cout.flush() ? kPassed : kFailed;
}

double read_speed(const std::string& word) {
    const auto speed = number_of<double>(word);
    if (speed && *speed >= 0.1 && *speed <= 1000) return *speed;
    throw std::invalid_argument("\"" + word + "\" is no speed from 0.1 to 1000");
}

constexpr char kUsage[] = R"(brivola-sim: a simulated host with displays, for the firmware plug-in

  brivola-sim [--speed N]                         opens its wizard on sample displays, on the terminal; where there
                                                  is none, plays the sample scenario and draws each screen as text
  brivola-sim run FILE [--quiet] [--pictures]     plays a scenario (-: standard input) and prints its trace
  brivola-sim run {--compare | --record} FILE...  compares traces with those recorded, or records them
  brivola-sim controls                            prints the size and controls of each dialog

Also: --data DIR keeps settings, drives, displays and units; --plugin PATH is the library to try.
The manual page tells more. Statements of a scenario, one a line (# begins a comment):
)";

constexpr std::pair<std::string_view, bool CommandLine::*> kFlags[] = {
    {"--help", &CommandLine::help},         {"-h", &CommandLine::help},           {"--quiet", &CommandLine::quiet},
    {"--pictures", &CommandLine::pictures}, {"--compare", &CommandLine::compare}, {"--record", &CommandLine::record},
};

}  // namespace

CommandLine parse_command_line(std::span<const std::string> arguments) {
    CommandLine line;
    bool runs = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        const auto value = [&]() -> const std::string& {
            if (i + 1 == arguments.size() || arguments[i + 1].empty())
                throw std::invalid_argument(word + " needs a value");
            return arguments[++i];
        };
        const auto* const flag = std::ranges::find(kFlags, word, [](const auto& known) { return known.first; });
        if (flag != std::end(kFlags)) {
            line.*flag->second = true;
        } else if (word == "--speed") {
            line.speed = read_speed(value());
        } else if (word == "--data") {
            line.data = value();
        } else if (word == "--plugin") {
            line.plugin = value();
        } else if (word == "controls" && !runs) {
            line.controls = true;
        } else if (word == "run" && !runs && !line.controls) {
            runs = true;
        } else if (runs && !word.empty() && (word == "-" || word.front() != '-')) {
            line.scenarios.push_back(word);
        } else {
            throw std::invalid_argument("\"" + word + "\" is not understood");
        }
    }
    line.compare = line.compare || line.record;
    if ((runs || line.compare) && line.scenarios.empty() && !line.help)
        throw std::invalid_argument("run needs a scenario file");
    if (line.scenarios.size() > 1 && !line.compare)
        throw std::invalid_argument("only --compare takes several scenarios");
    return line;
}

int run_program(std::span<const std::string> words, MakeSession make) {
    constexpr char kName[] = "brivola-sim: ";
    CommandLine options;
    try {
        options = parse_command_line(words);
    } catch (const std::exception& error) {
        std::cerr << kName << error.what() << "; try --help\n";
        return kBadUsage;
    }
    if (options.help) {
        std::cout << kUsage << statement_reference() << std::flush;
        return std::cout ? kPassed : kFailed;
    }
    try {
        if (options.compare) return compare_scenarios(options, make);
        const auto session = make(options);
        if (options.controls) return session->print_controls();
        if (options.scenarios.empty()) return session->play_without_scenario();
        return session->play(options.scenarios.front(), std::cout, std::cerr);
    } catch (const TextError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << kName << message_of(error) << '\n';
    }
    return kBadUsage;
}

}  // namespace vex::sim
