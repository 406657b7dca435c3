' A client that knows a unit by names alone, as nobody compiled it against the library. Prints what a user of the unit
' would see.
Option Explicit
Dim unit, ports, port, parameters, parameter, report, text, i

Const kPortTypes = "material,energy,information,any"
Const kDirections = "inlet,outlet,inlet or outlet"
Const kKinds = "real,integer,option,boolean,array"
Const kModes = "input,output,input and output"
Const kStatus = "not validated,invalid,valid"

Function Named(names, code)
  Dim all
  all = Split(names, ",")
  Named = all(code)
End Function

' Elements one after the other; an array that is no array of variants fails here.
Function Listed(elements)
  Dim element
  For Each element In elements
    If Listed <> "" Then Listed = Listed & ", "
    Listed = Listed & element
  Next
  Listed = Listed & " (" & LBound(elements) & " to " & UBound(elements) & ")"
End Function

' Prints how what was tried ended.
Sub Tell(what)
  If Err.Number = 0 Then
    WScript.Echo what & ": done"
  Else
    WScript.Echo what & ": error " & Hex(Err.Number) & " of " & Err.Source & ": " & Err.Description
  End If
  Err.Clear
End Sub

Set unit = CreateObject("VELT_MORV.NoOperation")
WScript.Echo "--- " & TypeName(unit) & " " & unit.ComponentName & ": " & unit.ComponentDescription
On Error Resume Next
Set ports = unit.ports
Tell "ports before Initialize"
On Error GoTo 0
unit.Initialize

WScript.Echo "--- " & unit.ports.Count & " ports"
For i = 1 To unit.ports.Count
  Set port = unit.ports.Item(i)
  WScript.Echo port.ComponentName & ", " & Named(kPortTypes, port.portType) & ", " & _
    Named(kDirections, port.direction) & ", " & port.ComponentDescription & _
    ", connected to nothing: " & (port.connectedObject Is Nothing)
Next
WScript.Echo "in one chain: " & unit.ports.Item("Inlet").direction & " " & unit.ports.Item("Outlet").direction
WScript.Echo "in other letters: " & UNIT.PORTS.ITEM("oUTLET").DIRECTION & " " & unit.Ports.item("INLET").componentname

WScript.Echo "--- " & unit.parameters.Count & " parameter"
For i = 1 To unit.parameters.Count
  Set parameter = unit.parameters.Item(i)
  WScript.Echo parameter.ComponentName & ", " & Named(kKinds, parameter.Type) & ", " & _
    Named(kModes, parameter.Mode) & ", " & Named(kStatus, parameter.ValStatus) & ", " & parameter.ComponentDescription
  WScript.Echo "value: " & parameter.value & ", default: " & parameter.Specification.DefaultValue
  WScript.Echo "options: " & Listed(parameter.OptionList) & ", no others: " & parameter.RestrictedToList
  WScript.Echo "dimensionality: " & Listed(parameter.Dimensionality)
Next

WScript.Echo "--- values"
Set parameter = unit.parameters.Item("thermo version")
parameter.value = "1.1"
WScript.Echo "a good value is kept: " & parameter.value
On Error Resume Next
parameter.value = "1.2"
Tell "a value that is no option"
parameter.value = 1.1
Tell "a number"
parameter.value = Empty
Tell "nothing"
parameter.Mode = 1
Tell "another mode"
text = parameter.LowerBound
Tell "the lower bound of an option"
On Error GoTo 0
WScript.Echo "the good value is still there: " & parameter.value
text = "old text"
WScript.Echo "valid: " & parameter.Validate(text) & ", message: [" & text & "], " & Named(kStatus, parameter.ValStatus)
parameter.Reset
WScript.Echo "after Reset: " & parameter.value & ", " & Named(kStatus, parameter.ValStatus)

WScript.Echo "--- wrong names"
On Error Resume Next
Set port = unit.ports.Item("Feed")
Tell "a port that is not there"
Set port = unit.ports.Item(3)
Tell "the third port"
Set port = unit.ports.Item("")
Tell "a port without name"
Set parameter = unit.parameters.Item("Pressure drop")
Tell "a parameter that is not there"
Set parameter = unit.parameters.Item(2)
Tell "the second parameter"
text = unit.Pressure
Tell "a member that is not there"

WScript.Echo "--- connections"
Set port = unit.ports.Item("Inlet")
port.Connect unit
Tell "a unit as a stream"
port.Disconnect
Tell "disconnecting what is not connected"
Set unit.simulationContext = Nothing
Tell "no simulation context"

WScript.Echo "--- validation"
text = "old text"
WScript.Echo Named(kStatus, unit.ValStatus)
WScript.Echo "valid: " & unit.Validate(text) & ", message: [" & text & "]"
WScript.Echo "without a variable for the message: " & unit.Validate() & ", " & Named(kStatus, unit.ValStatus)
text = unit.Validate("one", "two")
Tell "with too many arguments"
unit.Calculate
Tell "calculation"
WScript.Echo unit.name & " | " & unit.description & " | " & unit.scope & " | " & unit.interfaceName & " | " & _
  unit.operation & " | " & unit.moreInfo & " | " & Hex(unit.code)

WScript.Echo "--- reports: " & Listed(unit.reports) & ", selected: " & unit.selectedReport
For Each report In unit.reports
  unit.selectedReport = UCase(report)
  Tell "selecting " & UCase(report)
  WScript.Echo unit.selectedReport & " as a result: [" & unit.ProduceReport() & "]"
  unit.ProduceReport text
  WScript.Echo unit.selectedReport & " in a variable: [" & text & "]"
Next
unit.selectedReport = "Summary"
Tell "a report that is not there"

WScript.Echo "--- the end"
Set ports = unit.ports
unit.Terminate
Tell "Terminate"
unit.Calculate
Tell "calculation after Terminate"
Set unit = Nothing
i = ports.Count
Tell "counting the ports of a unit that is gone"

' ---- A unit with a configuration.
Set unit = CreateObject("VELT_MORV.Mixer")
WScript.Echo "--- " & TypeName(unit) & " " & unit.ComponentName
On Error Resume Next
text = unit.GetConfiguration()
Tell "configuration before Initialize"
unit.Initialize
WScript.Echo unit.GetConfiguration()
unit.SetConfiguration "{""numberOfInlets"": 3}"
Tell "three inlets"
WScript.Echo unit.GetConfiguration() & ", " & unit.ports.Count & " ports, number of inlets: " & _
  unit.parameters.Item("Number of inlets").value
unit.SetConfiguration "{""numberOfInlets"": 129}"
Tell "129 inlets"
unit.SetConfiguration "{""inlets"": 4}"
Tell "another key"
unit.SetConfiguration 4
Tell "a number"
WScript.Echo unit.GetConfiguration()
