// The program of the simulated host.
#include "simulator/program.h"

#include <charconv>
#include <iostream>

#include "simulator/scenario.h"
#include "simulator/session.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

double read_speed(const std::string& word) {
    double speed = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), speed);
    if (error != std::errc() || end != word.data() + word.size() || !(speed >= kSlowest && speed <= kFastest)) {
        throw std::invalid_argument("\"" + word + "\" is no speed from 0.1 to 1000");
    }
    return speed;
}

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
        if (word == "--help" || word == "-h") {
            line.help = true;
        } else if (word == "--quiet") {
            line.quiet = true;
        } else if (word == "--pictures") {
            line.pictures = true;
        } else if (word == "--compare") {
            line.compare = true;
        } else if (word == "--record") {
            line.compare = line.record = true;
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
        } else if (runs && (word == "-" || word.substr(0, 1) != "-")) {
            line.scenarios.push_back(word);
        } else {
            throw std::invalid_argument("\"" + word + "\" is not understood");
        }
    }
    if ((runs || line.compare) && line.scenarios.empty() && !line.help)
        throw std::invalid_argument("run needs a scenario file");
    if (line.scenarios.size() > 1 && !line.compare)
        throw std::invalid_argument("only --compare takes several scenarios");
    return line;
}

std::string usage() {
    return "brivola-sim: a simulated host with displays, for the firmware plug-in\n"
           "\n"
           "  brivola-sim run FILE   plays the scenario in FILE (-: standard input) and prints its trace\n"
           "  brivola-sim controls   prints the controls of each dialog, by the names that scenarios use (not on "
           "Windows)\n"
           "  brivola-sim            opens the plug-in's wizard on sample displays, on the terminal; where there is\n"
           "                         none, plays the sample scenario and draws each screen as text\n"
           "\n"
           "  --compare      plays several FILEs and compares each trace with the one recorded in FILE.trace, "
           "messages\n"
           "                 with FILE.errors; --record writes these anew\n"
           "  --data DIR     keeps settings, drives, displays and units in DIR; without it each run has its own\n"
           "  --plugin PATH  the plug-in's library; without it the one beside this program\n"
           "  --quiet        prints no trace, only what the scenario shows\n"
           "  --pictures     draws each screen of the scenario as text (not on Windows)\n"
           "  --speed N      on the terminal: makes the simulated links N times as fast as usual (0.1 to 1000)\n"
           "\n"
           "Exit status: 0 passed, 1 an expectation failed or something was not released, 2 a bad scenario or usage,\n"
           "128 + N the wizard was ended by signal N.\n"
           "\n"
           "Statements, one a line (# begins a comment):\n" +
           statement_reference();
}

int run_program(std::span<const std::string> words, const std::function<int(const CommandLine& options)>& play) {
    constexpr char kName[] = "brivola-sim: ";
    CommandLine options;
    try {
        options = parse_command_line(words);
    } catch (const std::exception& error) {
        std::cerr << kName << error.what() << "; try --help\n";
        return kBadUsage;
    }
    if (options.help) {
        std::cout << usage() << std::flush;
        return std::cout ? kPassed : kFailed;
    }
    try {
        return play(options);
    } catch (const TextError& error) {
        std::cerr << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << kName << message_of(error) << '\n';
    }
    return kBadUsage;
}

}  // namespace vex::sim
