// The simulated host's objects, and whole runs: exit statuses, messages with their place, and what is kept.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "simulator/class_library.h"
#include "simulator/native/native_session.h"
#include "tests/shared/temporary_folder.h"

namespace vex::sim {
namespace {

using testing::EndsWith;

/// Nothing is converted: an argument is of the declared kind, or it is refused with its place.
TEST(Objects, ArgumentsAreOfTheirKind) {
    Trace trace(std::cerr, true);
    NativeMachine machine;
    Host host(trace, machine);
    const auto refusal = [&host](const std::u16string& name, const std::u16string& member,
                                 std::initializer_list<com::Variant> arguments, WORD flags = kMethod | kGet) {
        try {
            call_late(*std::ranges::find(host_classes(), name, &HostClass::name)->make(host), member, arguments, flags);
        } catch (const RuntimeError& error) {
            return std::string(error.what());
        }
        return std::string("none");
    };
    EXPECT_EQ(refusal(u"HostDisplayList", u"FindDisplay", {}), "run-time error 13: FindDisplay: argument 1 is missing");
    EXPECT_EQ(refusal(u"HostDisplayList", u"OpenDisplayFile", {}, kPut),
              "run-time error 438: Object doesn't support this property or method");
    EXPECT_EQ(refusal(u"HostConnection", u"SignID", {com::Variant::int32(1)}, kPut),
              "run-time error 13: SignID: argument 1 is of another type than declared");
}

// ---- Runs

struct Outcome {
    ExitStatus status;
    std::string out;
    std::string errors;
};

Outcome run(const std::string& text, CommandLine options = {}) {
    if (!options.plugin) options.plugin = VEX_PLUGIN_LIBRARY;
    std::ostringstream out, errors;
    const ExitStatus status = NativeSession(options).play_text("a.scn", text, {}, out, errors);
    return {status, out.str(), errors.str()};
}

TEST(Run, ChecksAllExpectationsAndPrintsEach) {
    const Outcome outcome =
        run("display A\nstart\nexpect cmdNext.Enabled False\nexpect cmdBack.Enabled False\n"
            "expect HKLM\\Software\\x y z\nclick cmdCancel");
    EXPECT_EQ(outcome.status, kFailed);
    EXPECT_EQ(outcome.errors,
              "a.scn:3: expected cmdNext.Enabled = False, found True\n"
              "a.scn:5: expected HKLM\\Software\\x y = z, found (none)\n");
}

TEST(Run, EndsAtABadStatementWithItsPlaceAndClosesTheDialogs) {
    const struct {
        const char* statement;
        const char* message;
    } cases[] = {
        {"click cmdNxt", "a.scn:3: dlgFirmwareWizard has no control \"cmdNxt\"; the nearest is cmdNext\n"},
        {"start", "a.scn:3: a dialog is still open\n"},
        {"unit B 1 slaves=0x0", "a.scn:3: there is no display \"B\"\n"},
        {"file Z:\\tmp\\x", "a.scn:3: \"Z:\\tmp\\x\" is no path on a drive of A: to Y:\n"},
    };
    for (const auto& bad : cases) {
        const Outcome outcome = run(std::string("display A\nstart\n") + bad.statement + "\nshow SSTab1.Tab\n");
        EXPECT_EQ(outcome.status, kBadUsage) << bad.statement;
        EXPECT_EQ(outcome.errors, bad.message);
        EXPECT_THAT(outcome.out, EndsWith("open dlgFirmwareWizard\nclose dlgFirmwareWizard\nreturn StartPlugin\n"))
            << bad.statement;
    }
    EXPECT_EQ(run("click cmdNext").errors, "a.scn:1: no dialog is open\n");
}

TEST(Run, DisturbsTheFinderAndTheDisplayList) {
    const std::string displays =
        "display A type=\"TQ-1 - 64x16\" connection=2 address=10.0.0.3\nimage D:\\new.bin 64\n";
    const std::string user =
        "answer picker A\nanswer openfile D:\\new.bin\nstart\nclick cmdNext\nclick opLoadFirmware\n"
        "click cmdNext\nclick cmdChooseDisplay\nclick cmdNext\nclick cmdFirmwareBrowse\nclick cmdFinish";
    for (const std::string member : {"vexLANBoxFinder2", "SearchTimeout", "FindBoxes", "FindDisplay", "ComPort"}) {
        const Outcome outcome = run(displays + "fault A * " + member + " raise\n" + user);
        EXPECT_THAT(outcome.out, testing::ContainsRegex(member + "[^\n]* -> error 440\n.*error StartPlugin"));
    }
}

TEST(Run, KeepsItsDataWhereItIsTold) {
    const test::TemporaryFolder folder;
    CommandLine options;
    options.data = folder / "data";
    const Outcome first =
        run("display A ids=1,2\nunit A 1 slaves=0x0\ndisplay B port=COM2\nsetting Brivola3 Settings AppPath C:\\Host\n"
            "file C:\\Host\\x.bin\nanswer picker B\nstart\npress picNavTree 700 1400\nclick cmdChooseDisplay\n"
            "click cmdFinish\nclick cmdClose",
            options);
    EXPECT_EQ(first.status, kPassed) << first.errors;
    options.quiet = true;
    const Outcome second =
        run("units\nstart\nclick cmdCancel\nshow HKLM\\Software\\Norvan\\Brivola3\\Settings AppPath", options);
    EXPECT_EQ(second.out,
              "unit \"A\" 1: as delivered\nunit \"A\" 2: as delivered\nunit \"B\" 1: empty\n"
              "show HKLM\\Software\\Norvan\\Brivola3\\Settings AppPath = C:\\Host\n");
    EXPECT_TRUE(std::filesystem::exists(folder / "data/drive_c/Host/x.bin"));
    // Stated anew, a display replaces the one of its name; its units keep what they hold.
    EXPECT_THAT(run("display B port=COM7 ids=1,3\nunits", options).out,
                EndsWith("unit \"B\" 1: empty\nunit \"B\" 3: as delivered\n"));
    EXPECT_EQ(run("units").out, "") << "without a folder a run knows of nothing";
}

TEST(Run, NeedsAPluginAndAFileWithAnEnd) {
    CommandLine options;
    options.plugin = "no-such-library.so";
    const Outcome outcome = run("units", options);
    EXPECT_EQ(outcome.status, kBadUsage);
    EXPECT_THAT(outcome.errors, testing::HasSubstr("no-such-library.so"));
    std::ostringstream shown;
    EXPECT_THROW(NativeSession(options).play("/dev/zero", shown, shown), TextError);
}

}  // namespace
}  // namespace vex::sim
