' A client that is not ours: creates the entry class by the name that the catalogue tells, and calls late; with the
' library removed, neither class can be created. Usage: cscript //nologo client.vbs registered|removed
Option Explicit
Dim catalogue, entry, parameter, text, works
works = False
On Error Resume Next
Set catalogue = CreateObject("VEXFIRMWAREPLUGIN.plugindata")
If WScript.Arguments(0) = "removed" Then
    works = (Err.Number = 429)
    Err.Clear
    Set entry = CreateObject("vexFirmwarePlugin.vexFirmwareUtil")
    works = works And Err.Number = 429
Else
    Set entry = CreateObject(catalogue.PluginNames(0))
    Set parameter = catalogue
    entry.StartPreTransmit parameter
    works = (Err.Number = 0 And entry.GetMyName() = catalogue.PluginNames(0) And parameter Is catalogue And _
             catalogue.TotalPlugins = 1 And catalogue.PluginPic(0).Type = 3)
    text = catalogue.PluginNames(1)
    works = works And Err.Number = 9 And Len(Err.Description) > 0
End If
If works Then WScript.Echo WScript.Arguments(0) & ": as expected"
