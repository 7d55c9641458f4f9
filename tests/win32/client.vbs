' A client that is not ours: walks the catalogue, creates the entry class by the name that it reads there, and
' calls the members late. Usage: cscript //nologo client.vbs registered|removed
Option Explicit

Dim passed, failed
passed = 0
failed = 0

Sub Check(what, holds)
    If holds Then
        passed = passed + 1
    Else
        failed = failed + 1
        WScript.Echo "FAILED: " & what
    End If
End Sub

' The error number that creating a class raises; 0 when it succeeds.
Function CreationError(name)
    Dim created
    On Error Resume Next
    Set created = CreateObject(name)
    CreationError = Err.Number
End Function

Sub CheckCatalogue()
    Dim catalogue, picture, text, number, index
    Set catalogue = CreateObject("vexFirmWarePlugin.PluginData")
    Check "one feature", catalogue.TotalPlugins = 1
    Check "its name", catalogue.PluginNames(0) = "vexFirmwarePlugin.vexFirmwareUtil"
    Check "its description", catalogue.PluginDescription(0) = "Reset and Clear Display and also Load Firmware!"
    Check "its caption", catalogue.PluginDescriptiveName(0) = "Reset & Clear/Load Firmware"
    Set picture = catalogue.PluginPic(0)
    Check "its picture is an icon", picture.Type = 3

    For Each index In Array(1, -1)
        On Error Resume Next
        Err.Clear
        text = catalogue.PluginNames(index)
        number = Err.Number
        On Error GoTo 0
        Check "name " & index & " is out of range", number = 9
    Next
    On Error Resume Next
    Err.Clear
    text = catalogue.PluginDescriptiveName(7)
    number = Err.Number
    text = Err.Description
    On Error GoTo 0
    Check "caption 7 is out of range", number = 9
    Check "the error says so", Len(text) > 0
End Sub

Sub CheckEntryClass()
    Dim catalogue, entry, parameter
    Set catalogue = CreateObject("VEXFIRMWAREPLUGIN.plugindata")
    Set entry = CreateObject(catalogue.PluginNames(0))
    Check "it knows its name", entry.GetMyName() = catalogue.PluginNames(0)
    Set parameter = catalogue
    entry.StartPreTransmit parameter
    Check "the object is handed back untouched", parameter Is catalogue
End Sub

Select Case WScript.Arguments(0)
    Case "registered"
        CheckCatalogue
        CheckEntryClass
    Case "removed"
        Check "the catalogue is gone", CreationError("vexFirmWarePlugin.PluginData") = 429
        Check "the entry class is gone", CreationError("vexFirmwarePlugin.vexFirmwareUtil") = 429
End Select

WScript.Echo passed & " passed, " & failed & " failed"
If failed > 0 Then WScript.Quit 1
