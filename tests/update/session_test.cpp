// The session with one display: what it shows and asks of the host, in order, in each of its modes.
#include "update/dlg_handle_sign_option.h"

#include "tests/update/notebook.h"

namespace vex::test {
namespace {

class Session : public RecordedFixture {
protected:
    Session() {
        display({{"DisplayName", u"Main Street"}, {"FirmwareVersion", u"1.50"}, {"ConnectionType", u"1"},
                 {"ComPort", u"COM1"}, {"ComBaud", u"9600"}, {"PhoneNumber", u"555"}, {"NetworkAddress", u"10.0.0.7"},
                 {"SignIDs", u"7"}});
    }
};

TEST_F(Session, AMessageWhileTheControlIsClosedIsNoStatus) {
    screen.at_close = [this](forms::Form&) { host.raise("vexDispTrans", u"Good bye"); };
    host.during["vexDispTrans.CloseConnection"] = [this](DISPPARAMS&) { host.raise("vexDispTrans", u"Hanging up"); };
    host::HostDisplayList displays;
    dlgHandleSignOption session(services);
    session.dDisp = &displays;
    EXPECT_TRUE(session.ProcessOptions());
    EXPECT_EQ(session.LastStatus(), u"Hanging up");
}

}  // namespace
}  // namespace vex::test
