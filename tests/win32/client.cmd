@regsvr32 /s vexFirmwarePlugin.dll
@cscript //nologo client.vbs registered
@regsvr32 /u /s vexFirmwarePlugin.dll
@cscript //nologo client.vbs removed
