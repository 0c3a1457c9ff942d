// Reads two bytes of the door module on the simulated bus.

#include "pellumo/OpenDevice.h"
#include "tarvix/tarvix.h"

#include <iostream>

int main()
{
    const auto Device = Pellumo::OpenDevice("sim:"); // or "ftdi:///1": the first chip on USB
    Tarvix::clsLIN Master;
    Master.Initialize(*Device);
    Master.BaudrateBd(19200);
    if (Master.ReadFrame(Tarvix::clsLIN::ComputeIDParity(0x3D), 2)) {
        for (const auto& Byte : Master.Data2().Elements()) {
            std::cout << Byte.ToText() << ' '; // 18 52
        }
    }
    Master.Terminate();
}
