/// @file
/// A program of somebody else's: reads a frame from the simulated bus, is told of an error and asks for the version.
#include "pellumo/OpenDevice.h"
#include "pellumo/errPellumo.h"
#include "tarvix/tarvix.h"

#include <iostream>

int main()
{
    const auto Device = Pellumo::OpenDevice("sim:");
    Tarvix::clsLIN Master;
    Master.Initialize(*Device);
    Master.BaudrateBd(19200);
    Master.ReadFrame(Tarvix::clsLIN::ComputeIDParity(0x3D), 2);
    for (const auto& Byte : Master.Data2().Elements()) {
        std::cout << Byte.ToText() << ' ';
    }
    try {
        Pellumo::OpenDevice("nothing:");
    } catch (const Tarvix::Error& Caught) {
        std::cout << (Caught.Is(Pellumo::errPellumo::errURL) ? "errURL " : "another error ");
    }
    const Tarvix::Process Loaded;
    std::cout << Loaded.Major() << '.' << Loaded.Minor() << '.' << Loaded.Revision() << '\n';
}
