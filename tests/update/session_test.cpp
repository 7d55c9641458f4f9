// The session with one display: what it shows and asks of the host, in order, in each of its modes.
#include "update/dlg_handle_sign_option.h"

#include <gmock/gmock.h>

#include <thread>

#include "core/unicode.h"
#include "support/mod_reg_access.h"
#include "support/text.h"
#include "tests/shared/error_of.h"
#include "tests/shared/notebook.h"

namespace vex::test {
namespace {

using testing::HasSubstr;

class Session : public RecordedFixture {
protected:
    Session() {
        display({{"DisplayName", u"Main Street"}, {"FirmwareVersion", u"1.41"}, {"ConnectionType", u"1"},
                 {"ComPort", u"COM1"}, {"ComBaud", u"9600"}, {"PhoneNumber", u"555"}, {"NetworkAddress", u"10.0.0.7"},
                 {"SignIDs", u"7"}});
        notebook.omitted = {"HostDisplayList"};
    }

    /// Loads the file, or only resets without one. Answers whether the display was updated.
    bool play(const char16_t* file, bool tq1 = false, bool external = false) {
        notebook.take();
        host::HostDisplayList displays;
        dlgHandleSignOption session(services);
        session.sFirmwareFilename = file;
        if (tq1) session.bIsTQ1 = true;
        if (external) session.bUseExternalApp = true;
        session.dDisp = &displays;
        const bool updated = session.ProcessOptions();
        status = session.LastStatus();
        return updated;
    }
    /// What has been written, from a text on.
    std::string log_from(const char* text) {
        const std::string all = notebook.take();
        const std::size_t begin = all.find(text);
        return begin == std::string::npos ? "nowhere: " + all : all.substr(begin);
    }

    std::u16string status;
};

TEST_F(Session, ResetsEveryUnitFromTheLastToTheFirst) {
    display({{"SignIDs", u"01,20"}});
    host.during["vexDispTrans.SignID"] = [this](DISPPARAMS& given) {
        host.answers["HostSignInfo.HasSlaves"] = com::Variant::boolean(given.rgvarg[0].iVal == 1);
        host.answers["HostSignInfo.SlaveCountY"] = com::Variant::int16(1);
        host.answers["HostSignInfo.SlaveCountX"] = com::Variant::int16(0);
    };
    host.during["vexDispTrans.CloseConnection"] = [this](DISPPARAMS&) {
        EXPECT_EQ(host.raise("vexDispTrans", com::Variant::int32(5)), S_OK);
        EXPECT_EQ(host.raise("vexDispTrans", u"Hanging up"), S_OK);
        EXPECT_EQ(host.raise("vexDispTrans", u"another event", 8), S_OK);
        com::Variant nowhere = com::Variant::text_reference(nullptr);
        for (const com::Variant& no_text : {com::Variant::object(nullptr), nowhere})
            EXPECT_EQ(host.raise("vexDispTrans", no_text), DISP_E_EXCEPTION) << no_text.type();
        EXPECT_EQ(host.raise("vexDispTrans", u"no argument", 9, 0), DISP_E_BADPARAMCOUNT);
        std::thread([this] {
            EXPECT_EQ(host.raise("vexDispTrans", u"from another thread"), RPC_E_WRONG_THREAD);
        }).join();
    };
    // What the control says while it is closed is no status of the work.
    screen.at_close = [this](forms::Form&) { EXPECT_EQ(host.raise("vexDispTrans", u"Good bye"), S_OK); };
    EXPECT_TRUE(play(u""));
    EXPECT_EQ(status, u"Hanging up");
    EXPECT_EQ(notebook.take(), log(R"(
vexDispTrans new
vexLANBoxFinder2 new
open dlgHandleSignOption
lblDisplayName: Main Street
lblStatus: Preparing to Open Connection to Display!
HostConnection new ConnectionType=I2 1 ComBaud="9600" ComPort="COM1" SignID=I2 1
vexDispTrans OpenConnection(&object)
lblStatus: Connection Open
lblStatus: Checking for Master/Slaves
redraw lblStatus
lblID: 01
vexDispTrans SignID=I2 1 GetSignInfo()
lblID: 20
vexDispTrans SignID=I2 20 GetSignInfo() SignID=I2 20 ResetAndClear() SignID=I2 2
lblID: 2
vexDispTrans ResetAndClear() SignID=I2 1
lblID: 1
vexDispTrans ResetAndClear()
lblStatus: Closing Connection
vexDispTrans CloseConnection()
pump
lblStatus: 5
pump
pump
lblStatus: Hanging up
pump
close dlgHandleSignOption
)"));
}

TEST_F(Session, LoadsMotorolaFirmwareIntoEveryUnitOverTheTelephone) {
    display({{"ConnectionType", u"3"}, {"SignIDs", u"7,8"}});
    EXPECT_TRUE(play(u"D:\\fw\\new.SHX"));
    const std::string all = notebook.take();
    EXPECT_THAT(all, HasSubstr("new ConnectionType=I2 3 ComBaud=\"9600\" ComPort=\"COM1\" PhoneNumber=\"555\" SignID=I2 7\n"));
    EXPECT_THAT(all, HasSubstr(R"(SignID=I2 8 DownloadFirmware(&"D:\fw\new.SHX")
lblID: 7
vexDispTrans SignID=I2 7 DownloadFirmware(&"D:\fw\new.SHX")
lblStatus: Closing Connection
)"));
}

TEST_F(Session, LoadsRabbitFirmwareWithTheFlashLoaderOverTheNetwork) {
    display({{"ConnectionType", u"2"}});
    EXPECT_FALSE(play(u"D:\\fw\\new.BIN", true)) << "not unless it is switched on";
    WriteHostSetting(services, u"Brivola3", u"Settings", u"EnableXPort", u"True");
    host.during["vexLANBoxFinder2.FindBoxes"] = [this](DISPPARAMS&) {
        host.raise("vexLANBoxFinder2", u"an UDS");
        host.raise("vexLANBoxFinder2", u"an XPort");
    };
    host.answers["vexDispTrans.PrepareForFirmware"] = com::Variant::boolean(false);
    EXPECT_TRUE(play(u"D:\\fw\\new.BIN", true));
    EXPECT_EQ(log_from("lblStatus"), log(R"(
lblStatus: Checking if Display Type and Connection support firmware download!
vexLANBoxFinder2 SearchTimeout=I2 1000 FindBoxes("10.0.0.7", R8 7, R8 7)
lblStatus: Preparing to Open Connection to Display!
HostConnection new ConnectionType=I2 2 NetworkAddress="10.0.0.7" ComPort="COM1" SignID=I2 7
vexDispTrans OpenConnection(&object)
lblStatus: Connection Open
vexDispTrans PrepareForFirmware()
is there C:\Plugin\BIN\FIRMWARE\SL-RCM2000D.BIN
vexDispTrans DownloadFirmwareWithLoader(&"D:\fw\new.BIN", "C:\Plugin\BIN\FIRMWARE\SL-RCM2000D.BIN") CloseConnection()
close dlgHandleSignOption
)"));
    files_exist = false;
    host.during.clear();
    EXPECT_FALSE(play(u"D:\\fw\\new.BIN", true));
    EXPECT_EQ(status, u"Flash Loader [BIN\\FIRMWARE\\SL-RCM2000B.BIN] not found");
}

TEST_F(Session, LeavesRabbitFirmwareToTheExternalTool) {
    WriteHostSetting(services, u"Brivola3", u"Settings", u"AppPath", u"C:\\Host\\");
    host.during["vexDispTrans.PrepareForFirmware"] = [this](DISPPARAMS&) { host.raise("vexDispTrans", u"Locked"); };
    for (const bool prepared : {true, false}) {
        host.answers["vexDispTrans.PrepareForFirmware"] = com::Variant::boolean(prepared);
        EXPECT_EQ(play(u"D:\\fw\\new.BIN", true, true), prepared);
        EXPECT_EQ(status, u"Locked") << "the control's last word";
        EXPECT_EQ(log_from("OpenConnection"), log(R"(
OpenConnection(&object)
lblStatus: Connection Open
vexDispTrans PrepareForFirmware()
pump
lblStatus: Locked
pump
vexDispTrans CloseConnection()
is there C:\Host\\BIN\FIRMWARE\nvSerDownload.exe
start C:\Host\\BIN\FIRMWARE\nvSerDownload.exe
close dlgHandleSignOption
)"));
    }
    // Without the tool, the preparation alone is the outcome.
    files_exist = false;
    host.answers.erase("vexDispTrans.PrepareForFirmware");
    EXPECT_TRUE(play(u"D:\\fw\\new.BIN", true, true));
    EXPECT_EQ(notebook.take().find("start"), std::string::npos);
}

TEST_F(Session, RefusesFirmwareForATq1BoardThatCannotTakeItAndForNoOther) {
    display({{"FirmwareVersion", u"1.40"}});
    EXPECT_FALSE(play(u"D:\\fw\\new.BIN", true));
    EXPECT_EQ(status, u"Display does not support firmware upgrade!");
    EXPECT_EQ(notebook.take().find("HostConnection"), std::string::npos);
    EXPECT_TRUE(play(u"D:\\fw\\new.SHX"));
    EXPECT_TRUE(play(u"", true)) << "any board can be reset";
    display({{"FirmwareVersion", u"KQS 1"}});
    EXPECT_TRUE(play(u"D:\\fw\\new.BIN", true));
}

TEST_F(Session, AConnectionThatDoesNotOpenEndsIt) {
    host.answers["vexDispTrans.OpenConnection"] = com::Variant::boolean(false);
    EXPECT_FALSE(play(u""));
    EXPECT_EQ(log_from("lblStatus: Connection"), "lblStatus: Connection Problem\nlblStatus: Unable to open connection "
                                                 "to display!\nclose dlgHandleSignOption\n");
}

TEST_F(Session, AnUnknownKindOfConnectionIsTheNetworkAndTheControlMayReplaceIt) {
    display({{"ConnectionType", u"7"}});
    host.during["vexDispTrans.OpenConnection"] = [this](DISPPARAMS& given) {
        IDispatch*& connection = *given.rgvarg[0].ppdispVal;
        connection->Release();
        connection = host.make(u"HostConnection").detach();
    };
    EXPECT_TRUE(play(u""));
    EXPECT_THAT(notebook.take(), HasSubstr("new ConnectionType=I2 2 NetworkAddress=\"10.0.0.7\" ComPort=\"COM1\" "));
}

TEST_F(Session, CancelAsksAndEndsTheOperationAndTheConnection) {
    display({{"SignIDs", u"1,2"}});
    host.during["vexDispTrans.ResetAndClear"] = [this](DISPPARAMS&) { host.raise("vexDispTrans", u"Resetting"); };
    screen.at_pump = [](forms::Form& form) { form.raise_click(*form.find("cmdCancel")); };
    EXPECT_FALSE(play(u"")) << "though the operation succeeded";
    EXPECT_EQ(log_from("ResetAndClear"), log(R"(
ResetAndClear()
pump
ask "Verify Cancellation" "Are you sure you want to cancel?" yes/no
vexDispTrans CancelTransmission() CloseConnection()
lblStatus: Resetting
pump
lblStatus: Closing Connection
vexDispTrans CloseConnection()
close dlgHandleSignOption
)"));
    screen.answer = forms::MessageAnswer::no;
    screen.at_pump = [](forms::Form& form) { form.raise_click(*form.find("cmdCancel")); };
    EXPECT_TRUE(play(u""));
}

TEST_F(Session, ACancelDuringTheEnumerationStillListsTheSlavesAndAddressesNoUnit) {
    display({{"SignIDs", u"1,2,3"}});
    host.during["vexDispTrans.GetSignInfo"] = [this](DISPPARAMS&) { host.raise("vexDispTrans", u"Asking"); };
    screen.at_pump = [](forms::Form& form) { form.raise_click(*form.find("cmdCancel")); };
    EXPECT_FALSE(play(u""));
    EXPECT_EQ(log_from("lblStatus: Asking"), "lblStatus: Asking\npump\nlblID: 2\nclose dlgHandleSignOption\n");
}

TEST_F(Session, ListensToAControlThatTalksWhileItIsListenedTo) {
    int talks = 0;
    std::function<void(forms::Form&)> talk = [&](forms::Form&) {
        if (++talks < 100) screen.at_pump = talk;
        EXPECT_EQ(host.raise("vexDispTrans", u"Talk " + decimal_text(talks)), S_OK);
    };
    host.during["vexDispTrans.ResetAndClear"] = [&](DISPPARAMS&) {
        screen.at_pump = talk;
        host.raise("vexDispTrans", u"Resetting");
    };
    EXPECT_TRUE(play(u""));
    EXPECT_EQ(talks, 100);
    EXPECT_THAT(log_from("lblStatus: Talk 100"), HasSubstr("lblStatus: Talk 1\npump\nlblStatus: Resetting\npump\n"));
}

TEST_F(Session, WorksOnceAndIsNotClosedByItsUser) {
    host.during["vexDispTrans.ResetAndClear"] = [this](DISPPARAMS&) { host.raise("vexDispTrans", u"Resetting"); };
    screen.at_pump = [](forms::Form& form) {
        form.raise_activate();
        form.raise_close_request();
        EXPECT_TRUE(form.running());
        form.raise_close_request(forms::UnloadMode::system);
        EXPECT_FALSE(form.running());
    };
    EXPECT_TRUE(play(u""));
    const std::string all = notebook.take();
    EXPECT_THAT(all, HasSubstr("ResetAndClear()\npump\nlblStatus: Resetting\npump\nlblStatus: Closing Connection\n"));
    EXPECT_EQ(all.find("OpenConnection"), all.rfind("OpenConnection"));
}

TEST_F(Session, IdsAndCountsThatCannotBeUsedAreErrors) {
    const auto error = [this](const char16_t* ids, std::int16_t rows, std::int16_t columns) {
        display({{"SignIDs", ids}});
        host.answers["HostSignInfo.HasSlaves"] = com::Variant::boolean(true);
        host.answers["HostSignInfo.SlaveCountY"] = com::Variant::int16(rows);
        host.answers["HostSignInfo.SlaveCountX"] = com::Variant::int16(columns);
        return error_of([this] { play(u""); });
    };
    EXPECT_EQ(error(u"", 0, 0), kSubscriptOutOfRange);
    EXPECT_EQ(error(u"1,", 0, 0), kTypeMismatch);
    EXPECT_EQ(error(u"1", 32767, 0), kOverflow);
    EXPECT_EQ(error(u"1", 0, 32767), kOverflow);
    EXPECT_EQ(error(u"1", 181, 181), kOverflow);
    EXPECT_EQ(error(u"32767", 0, 1), kOverflow);
    EXPECT_EQ(error(u"32766", 0, 1), 0);
    host.answers["vexDispTrans.ResetAndClear"] = com::Variant::text(u"perhaps");
    EXPECT_EQ(error(u"1", 0, 0), kTypeMismatch) << "no answer";
    host.answers.erase("vexDispTrans.ResetAndClear");
    // IDs that are gone when the connection stands are no units, and none is served.
    host.during["vexDispTrans.OpenConnection"] = [this](DISPPARAMS&) { display({{"SignIDs", u""}}); };
    for (const char16_t* file : {u"", u"D:\\fw\\new.SHX"}) {
        display({{"SignIDs", u"1"}});
        EXPECT_FALSE(play(file));
        EXPECT_EQ(notebook.take().find("Checking for"), std::string::npos);
    }
}

}  // namespace
}  // namespace vex::test
