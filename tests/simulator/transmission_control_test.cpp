// The two controls over COM: connections, work on units, events, and calls in the middle of calls.
#include <gmock/gmock.h>

#include <functional>
#include <vector>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/automation.h"
#include "simulator/class_library.h"
#include "simulator/firmware_image.h"
#include "tests/shared/late_object.h"
#include "tests/simulator/host_fixture.h"

namespace vex::sim {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Hears the events of a control.
class Listener final : public test::LateObject<Listener> {
public:
    using Handler = std::function<void(std::u16string text)>;

    Listener(com::ModuleLifetime& module, const IID& source, Handler handler)
        : LateObject(module), source_(source), handler_(std::move(handler)) {}

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        return Object::QueryInterface(iid == source_ ? IID_IDispatch : iid, object);
    }
    HRESULT Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                   UINT*) noexcept override {
        EXPECT_EQ(event, 9);
        EXPECT_EQ(parameters->rgvarg[0].vt, VT_BYREF | VT_BSTR);
        handler_(std::u16string(com::view(*parameters->rgvarg[0].pbstrVal)));
        return E_FAIL;
    }

private:
    IID source_;
    Handler handler_;
};

class TransmissionControlTest : public HostFixture {
protected:
    TransmissionControlTest() { add_display(u"A", u"COM1", u"1,20"); }

    void listen(Listener::Handler handler) {
        const auto class_info = control_.query<IProvideClassInfo2>();
        GUID source = GUID_NULL;
        ASSERT_EQ(class_info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source), S_OK);
        ASSERT_EQ(control_.query<IConnectionPointContainer>()->FindConnectionPoint(source, point_.put()), S_OK);
        const auto listener = com::make_object<Listener>(host_.lifetime, source, std::move(handler));
        ASSERT_EQ(point_->Advise(listener.get(), &cookie_), S_OK);
    }

    bool open(std::u16string_view port = u"COM1", std::int16_t id = 1) {
        const auto connection = create_object(u"vexBrivolaClasses4.HostConnection");
        put(*connection, u"ConnectionType", com::Variant::int16(1));
        put(*connection, u"ComPort", com::Variant::text(port));
        put(*connection, u"ComBaud", com::Variant::text(u"9600"));
        put(*connection, u"SignID", com::Variant::int16(id));
        IDispatch* place = connection.get();
        return is_true(call_late(*control_, u"OpenConnection", {com::Variant::object_reference(&place)}));
    }

    void select(std::int16_t id) { put(*control_, u"SignID", com::Variant::int16(id)); }
    bool call(std::u16string name) { return is_true(call_late(*control_, name)); }
    bool download() {
        folder_.write("drive_d/a.SHX", make_motorola_image(100));
        return is_true(call_late(*control_, u"DownloadFirmware", {Text(u"D:\\a.SHX")}));
    }
    std::string held(std::int16_t id) { return to_utf8(describe(host_.units.content(u"A", id))); }

    com::ComPtr<IDispatch> control_ = create_object(u"vexDTCon4.vexDispTrans");
    com::ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

TEST_F(TransmissionControlTest, WorksOnAnOpenConnectionOnly) {
    EXPECT_FALSE(call(u"ResetAndClear"));
    EXPECT_FALSE(call(u"PrepareForFirmware"));
    EXPECT_FALSE(download());
    const auto info = call_late(*control_, u"GetSignInfo");
    EXPECT_FALSE(is_true(call_late(*info.get().pdispVal, u"HasSlaves")));
    call(u"CloseConnection");
    EXPECT_FALSE(open(u"COM9"));
    EXPECT_TRUE(open());
    EXPECT_FALSE(open());
    EXPECT_TRUE(call(u"ResetAndClear"));
    call(u"CloseConnection");
    EXPECT_FALSE(call(u"ResetAndClear"));
    EXPECT_TRUE(open());
    EXPECT_EQ(held(1), "empty");
}

TEST_F(TransmissionControlTest, TakesNothingButItsOwnConnectionSettings) {
    const auto other = create_object(u"vexBrivolaClasses4.HostSignInfo");
    IDispatch* place = nullptr;
    const auto give = [&](IDispatch* settings) {
        place = settings;
        return is_true(call_late(*control_, u"OpenConnection", {com::Variant::object_reference(&place)}));
    };
    EXPECT_THROW(give(other.get()), RuntimeError);
    EXPECT_THROW(give(nullptr), RuntimeError);
    // The caller keeps his object, unless the control puts another one there, which is his then.
    const auto connection = create_object(u"vexBrivolaClasses4.HostConnection");
    EXPECT_FALSE(give(connection.get()));
    EXPECT_EQ(place, connection.get());
    put(*connection, u"ComPort", com::Variant::text(u"COM1"));
    put(*connection, u"ComBaud", com::Variant::text(u"9600"));
    put(*connection, u"ConnectionType", com::Variant::int16(1));
    host_.links.add_fault({{}, {}, Operation::OpenConnection}, FaultKind::replace);
    EXPECT_TRUE(give(com::ComPtr<IDispatch>(connection).detach()));
    EXPECT_NE(com::ComPtr<IDispatch>::adopt(place).get(), connection.get());
}

TEST_F(TransmissionControlTest, AddressesTheSelectedUnit) {
    ASSERT_TRUE(open());
    select(20);
    EXPECT_TRUE(download());
    select(7);
    EXPECT_FALSE(call(u"ResetAndClear"));
    EXPECT_THAT(held(20), HasSubstr("a.SHX, "));
    EXPECT_EQ(held(1), "as delivered");
}

TEST_F(TransmissionControlTest, LeavesAUnitAsItWasWhenItCannotTakeTheFile) {
    std::string heard;
    listen([&](const std::u16string& text) { heard = to_utf8(text); });
    ASSERT_TRUE(open());
    folder_.write("drive_d/bad.SHX", "Dear customer,\n");
    const auto load = [&](const char16_t* file) {
        return is_true(call_late(*control_, u"DownloadFirmware", {Text(file)}));
    };
    EXPECT_FALSE(load(u"D:\\bad.SHX"));
    EXPECT_EQ(heard, "D:\\bad.SHX, line 1: no S-record");
    EXPECT_FALSE(load(u"D:\\missing.SHX"));
    EXPECT_EQ(heard, "D:\\missing.SHX is no file that can be read");
    folder_.write("drive_d/empty.bin", "");
    folder_.write("drive_d/good.bin", "content");
    folder_.write("drive_d/loader.bin", make_loader_image(LoaderKind::line));
    const auto load_with = [&](const char16_t* file, const char16_t* loader) {
        return is_true(call_late(*control_, u"DownloadFirmwareWithLoader", {Text(file), com::Variant::text(loader)}));
    };
    EXPECT_FALSE(load_with(u"D:\\empty.bin", u"D:\\loader.bin"));
    EXPECT_FALSE(load_with(u"D:\\good.bin", u"D:\\empty.bin"));
    EXPECT_FALSE(load_with(u"D:\\good.bin", u"D:\\good.bin"));
    EXPECT_EQ(heard, "D:\\good.bin, byte 6: no flash loader");
    EXPECT_EQ(held(1), "as delivered");
    EXPECT_TRUE(load_with(u"D:\\good.bin", u"D:\\loader.bin"));
}

TEST_F(TransmissionControlTest, MeansTheDisplayThatWasAskedAboutOnASharedLine) {
    add_display(u"B", u"COM1", u"1");
    host_.display_asked_about = u"B";
    ASSERT_TRUE(open());
    EXPECT_TRUE(call(u"ResetAndClear"));
    EXPECT_EQ(held(1), "as delivered");
    EXPECT_EQ(host_.units.content(u"B", 1).state, Content::State::empty);
    call(u"CloseConnection");
    // Asked about one elsewhere, the first on the line answers.
    add_display(u"C", u"COM3", u"1");
    host_.display_asked_about = u"C";
    ASSERT_TRUE(open());
    EXPECT_TRUE(call(u"ResetAndClear"));
    EXPECT_EQ(held(1), "empty");
}

TEST_F(TransmissionControlTest, TellsItsProgressInQuarters) {
    std::vector<std::string> heard;
    listen([&](const std::u16string& text) { heard.push_back(to_utf8(text)); });
    ASSERT_TRUE(open());
    EXPECT_TRUE(download());
    EXPECT_THAT(heard, ElementsAre("Unit 1: 25 % of a.SHX", "Unit 1: 50 % of a.SHX", "Unit 1: 75 % of a.SHX",
                                   "Unit 1: 100 % of a.SHX"));
    point_->Unadvise(cookie_);
    EXPECT_EQ(point_->Unadvise(cookie_), CONNECT_E_NOCONNECTION);
    EXPECT_TRUE(call(u"ResetAndClear"));
    EXPECT_EQ(heard.size(), 4U);
}

/// At each message of a download in turn: cancelled, or its connection closed, it ends false at once, and the
/// unit holds nothing usable.
TEST_F(TransmissionControlTest, StopsWhereverItIsInterrupted) {
    for (const std::u16string member : {u"CancelTransmission", u"CloseConnection"}) {
        for (int moment = 1; moment <= 4; ++moment) {
            int heard = 0;
            listen([&](const std::u16string&) {
                if (++heard == moment) call_late(*control_, member);
            });
            ASSERT_TRUE(open());
            host_.units.store(u"A", 1, {Content::State::empty, {}});
            EXPECT_FALSE(download());
            EXPECT_EQ(held(1), "incomplete");
            EXPECT_EQ(heard, moment + 1) << "the last one says that it was cancelled";
            // A cancel leaves the connection open for what comes next.
            EXPECT_EQ(call(u"ResetAndClear"), member == u"CancelTransmission");
            call(u"CloseConnection");
            point_->Unadvise(cookie_);
        }
    }
}

TEST_F(TransmissionControlTest, ToleratesAnyCallInTheMiddleOfAnother) {
    std::vector<bool> answers;
    listen([&, depth = 0](const std::u16string&) mutable {
        if (++depth == 1) answers = {call(u"ResetAndClear"), download(), call(u"PrepareForFirmware"), open()};
        --depth;
    });
    ASSERT_TRUE(open());
    EXPECT_TRUE(call(u"ResetAndClear"));
    EXPECT_THAT(answers, ElementsAre(false, false, false, false));
    EXPECT_EQ(held(1), "empty");
}

TEST_F(TransmissionControlTest, SurvivesTheLossOfItsLastReferenceInACall) {
    ASSERT_TRUE(open());
    IDispatch& control = *control_;
    listen([&](const std::u16string&) {
        control_.reset();
        point_.reset();
    });
    EXPECT_TRUE(is_true(call_late(control, u"ResetAndClear")));
}

TEST_F(TransmissionControlTest, OffersItsOwnEventsOnly) {
    const auto container = control_.query<IConnectionPointContainer>();
    com::ComPtr<IConnectionPoint> point;
    EXPECT_EQ(container->FindConnectionPoint(kBoxFinderEvents, point.put()), CONNECT_E_NOCONNECTION);
    ASSERT_EQ(container->FindConnectionPoint(kTransmissionEvents, point.put()), S_OK);
    DWORD cookie = 0;
    EXPECT_EQ(point->Advise(control_.query<IUnknown>().get(), &cookie), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
}

class BoxFinderTest : public HostFixture {
protected:
    std::vector<std::u16string> find(std::u16string_view address, double first, double last) {
        const auto finder = create_object(u"vexLantronixControls2.vexLANBoxFinder2");
        com::ComPtr<IConnectionPoint> point;
        EXPECT_EQ(finder.query<IConnectionPointContainer>()->FindConnectionPoint(kBoxFinderEvents, point.put()), S_OK);
        std::vector<std::u16string> found;
        const auto listener = com::make_object<Listener>(
            host_.lifetime, kBoxFinderEvents, [&](std::u16string text) { found.push_back(std::move(text)); });
        DWORD cookie = 0;
        EXPECT_EQ(point->Advise(listener.get(), &cookie), S_OK);
        call_late(*finder, u"FindBoxes",
                  {com::Variant::text(address), com::Variant::real(first), com::Variant::real(last)});
        return found;
    }

    void add_box(std::u16string name, std::u16string address, std::u16string text) {
        Display display;
        display.name = name;
        display.address = std::move(address);
        host_.put_display(display);
        host_.units.add_box(name, std::move(text));
    }
};

TEST_F(BoxFinderTest, SearchesTheHostsOfTheRange) {
    add_box(u"A", u"10.0.0.7", u"seven");
    add_box(u"B", u"10.0.0.9", u"nine");
    add_box(u"C", u"10.0.1.7", u"elsewhere");
    add_box(u"D", u"sign", u"named");
    EXPECT_THAT(find(u"10.0.0.7", 7, 7), ElementsAre(u"seven"));
    EXPECT_THAT(find(u"10.0.0.7", 1, 254), ElementsAre(u"seven", u"nine"));
    EXPECT_THAT(find(u"10.0.0.7", 8, 8), ElementsAre());
    EXPECT_THAT(find(u"10.0.0.7", 9, 1), ElementsAre());
    EXPECT_THAT(find(u"sign", 0, 0), ElementsAre(u"named"));
    EXPECT_THAT(find(u"sign", 1, 9), ElementsAre());
    EXPECT_THAT(find(u"", -1e300, 1e300), ElementsAre());
}

}  // namespace
}  // namespace vex::sim
