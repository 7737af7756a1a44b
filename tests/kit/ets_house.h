#pragma once

#include "kit/ets_project.h"

/// A whole ETS 6 project of a house that nobody has: two rooms with a function of each kind, and
/// addresses that no function covers, as people name them.
namespace kit {

inline QByteArray ets_house() {
    const auto at = [](int _main, int _middle, int _sub, const char* _name, const char* _type) {
        return ets_address(_main << 11 | _middle << 8 | _sub, _name,
                           *_type == '\0' ? QByteArray() : ets_type(_type));
    };
    // Addresses by their numbers on the bus: 1/1/1 is 2305.
    return ets_project(
        R"(<Locations><Space Type="Building" Name="Mill">
<Space Type="Room" Name="Kitchen">
<Function Id="P-0AF1-0_F-1" Name="Ceiling" Type="FT-1">
<GroupAddressRef Role="SwitchOnOff" RefId="P-0AF1-0_GA-2305"/>
<GroupAddressRef Role="InfoOnOff" RefId="P-0AF1-0_GA-2306"/></Function>
<Function Id="P-0AF1-0_F-2" Name="Table" Type="FT-6">
<GroupAddressRef Role="SwitchOnOff" RefId="P-0AF1-0_GA-2307"/>
<GroupAddressRef Role="InfoOnOff" RefId="P-0AF1-0_GA-2308"/>
<GroupAddressRef Role="DimmingValue" RefId="P-0AF1-0_GA-2309"/>
<GroupAddressRef Role="InfoDimmingValue" RefId="P-0AF1-0_GA-2310"/></Function></Space>
<Space Type="Room" Name="Parlour">
<Function Id="P-0AF1-0_F-3" Name="Parlour blind" Type="FT-7">
<GroupAddressRef Role="MoveUpDown" RefId="P-0AF1-0_GA-4609"/>
<GroupAddressRef Role="StopStepUpDown" RefId="P-0AF1-0_GA-4610"/>
<GroupAddressRef Role="CurrentAbsolutePositionBlindsPercentage" RefId="P-0AF1-0_GA-4611"/></Function>
<Function Id="P-0AF1-0_F-4" Name="Heating" Type="FT-8">
<GroupAddressRef Role="TempRoom" RefId="P-0AF1-0_GA-6657"/>
<GroupAddressRef Role="TempRoomSetpoint" RefId="P-0AF1-0_GA-6658"/>
<GroupAddressRef Role="ValvePosition" RefId="P-0AF1-0_GA-6659"/></Function></Space>
</Space></Locations>)" +
        ets_addresses(
            at(1, 1, 1, "Kitchen ceiling", "DPST-1-1") +
            at(1, 1, 2, "Kitchen ceiling status", "DPST-1-11") +
            at(1, 1, 3, "Kitchen table", "DPST-1-1") +
            at(1, 1, 4, "Kitchen table status", "DPST-1-11") +
            at(1, 1, 5, "Kitchen table value", "DPST-5-1") +
            at(1, 1, 6, "Kitchen table value status", "DPST-5-1") +
            at(2, 2, 1, "Parlour blind", "DPST-1-8") +
            at(2, 2, 2, "Parlour blind stop", "DPST-1-7") +
            at(2, 2, 3, "Parlour blind position", "DPST-5-1") +
            at(3, 2, 1, "Parlour temperature", "DPST-9-1") +
            at(3, 2, 2, "Parlour set point", "DPST-9-1") +
            at(3, 2, 3, "Parlour valve", "DPST-5-1") + at(4, 0, 1, "Stairs lamp", "DPST-1-1") +
            at(4, 0, 2, "Stairs lamp status", "DPST-1-1") + at(4, 0, 3, "Pump socket", "DPST-1-1") +
            at(4, 0, 4, "Pump socket power", "DPST-14-56") +
            at(5, 0, 1, "Outside humidity", "DPST-9-7") + at(5, 0, 2, "Front door", "DPST-1-19") +
            at(6, 0, 1, "Scene 3 evening", "DPST-17-1") + at(7, 0, 1, "Clock", "DPST-10-1") +
            at(7, 0, 2, "Nothing said", "")));
}

}  // namespace kit
