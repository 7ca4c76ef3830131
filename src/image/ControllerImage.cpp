#include "ControllerImage.h"
#include "Firmware.h"

ControllerImage::ControllerImage()
{
    applyFirmware(0);
}

void ControllerImage::clearLoadedFlags()
{
    PatternLoaded.fill(false);
    PatternNameLoaded.fill(false);
}

void ControllerImage::setProgramMachine(int machine)
{
    if (machine == m_programMachine)
        return;
    clearLoadedFlags();
    m_programMachine = machine;
}

int ControllerImage::upRowsFor(double v)
{
    if (Firmware::atLeast(v, Firmware::CurrentLayout))
        return 512;
    if (Firmware::atLeast(v, Firmware::RevisionCurves))
        return 492;
    if (Firmware::atLeast(v, Firmware::Block456))
        return 456;
    return 392;
}

int ControllerImage::patternCountFor(double v)
{
    return Firmware::atLeast(v, Firmware::CurrentLayout) ? 100 : 300;
}

void ControllerImage::applyFirmware(double version)
{
    m_firmware = version;
    m_patternCount = patternCountFor(version);
    sprdUP.setRowCount(upRowsFor(version));
}

void ControllerImage::rebuildSlotColumns(const QList<int> &machineNumbers)
{
    for (TextTable *t : {&sprdRRP, &sprdRCV}) {
        t->resize(int(machineNumbers.size()), t->rowCount());
        for (int i = 0; i < machineNumbers.size(); ++i)
            t->setText(i + 1, 0, QString::number(machineNumbers[i]));
    }
}

void ControllerImage::clearSlotColumns()
{
    sprdRRP.clearCells();
    sprdRCV.clearCells();
}
