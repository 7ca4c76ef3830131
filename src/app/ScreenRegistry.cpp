#include "ScreenRegistry.h"
#include "ConsoleState.h"
#include "Recorder.h"
#include "ScreenContext.h"
#include "frmQM730Func_GrpSave.h"
#include "frmQM730Func_Run.h"
#include "frmQM730SYS_Alarm.h"
#include "frmQM730SYS_Comm.h"
#include "frmQM730SYS_DI.h"
#include "frmQM730SYS_DO.h"
#include "frmQM730SYS_ETC.h"
#include "frmQM730SYS_InnerNew.h"
#include "frmQM730_About.h"
#include "frmQM730_DataInput.h"
#include "frmQM730_History.h"
#include "frmQM730Prg_Managemen.h"
#include "frmQM730Prg_PTN.h"
#include "frmQM730Prg_SEG.h"
#include "frmQM730Prg_SEG_TS.h"
#include "frmQM730_PTN_Recv.h"
#include "frmQM730_RunMulti.h"
#include "frmQM730_P_Recv.h"
#include "frmQM730_P_Send.h"
#include "frmQM730_RunSimple.h"
#include "frmQM730_Set_DSave.h"
#include "frmQM730_Set_EMail.h"
#include "frmQM730_Set_Multi.h"
#include "frmQM730_Set_Port.h"
#include "frmQM730Online_DateTime.h"
#include "frmQM730Online_Screen.h"
#include "frmQM730_SysPass_Chk.h"
#include "frmQM730_SysPass_Reg.h"
#include "frmQM730SYS_Control.h"
#include "frmQM730SYS_PID.h"
#include "frmQM730SYS_Revision.h"
#include "frmQM730SYS_Sensor.h"
#include "frmQM730_TMon.h"
#include "frmSelectFolder.h"
#include "frmSys_AlarmCode.h"
#include <QDialog>

namespace {

// The maker of a screen built as T(ScreenContext &, QWidget *parent).
template <class T>
ScreenRegistry::Maker make()
{
    return [](ScreenContext &context, QWidget *parent) { return std::unique_ptr<QDialog>(new T(context, parent)); };
}

} // namespace

ScreenRegistry ScreenRegistry::console()
{
    ScreenRegistry r;
    const int refresh = RefreshOnOpen;
    r.m_entries = {
        // Local settings.
        {"frmQM730_Set_Port", Nothing, make<frmQM730_Set_Port>()},
        {"frmQM730_Set_Multi", Nothing, make<frmQM730_Set_Multi>()},
        {"frmQM730_Set_DSave", Nothing,
         [](ScreenContext &c, QWidget *parent) {
             auto screen = std::make_unique<frmQM730_Set_DSave>(c, parent);
             screen->setCallWin(parent ? parent->objectName() : QString());
             return std::unique_ptr<QDialog>(std::move(screen));
         }},
        {"frmSelectFolder", Nothing,
         [](ScreenContext &c, QWidget *parent) {
             return std::unique_ptr<QDialog>(
                 new frmSelectFolder(c.recorder.runLog().settings().SaveFolder, c.state.home, parent));
         }},
        {"frmQM730_Set_EMail", Nothing, make<frmQM730_Set_EMail>()},
        {"frmQM730_SysPass_Reg", Nothing, make<frmQM730_SysPass_Reg>()},
        {"frmQM730_SysPass_Chk", Nothing, make<frmQM730_SysPass_Chk>()},
        // Online functions.
        {"frmQM730_P_Recv", Nothing, make<frmQM730_P_Recv>()},
        {"frmQM730_P_Send", Nothing, make<frmQM730_P_Send>()},
        {"frmQM730Online_DateTime", refresh, make<frmQM730Online_DateTime>()},
        {"frmQM730Online_Screen", Nothing, make<frmQM730Online_Screen>()},
        {"frmQM730_RunSimple", refresh | ReadParameters, make<frmQM730_RunSimple>()},
        {"frmQM730_RunMulti", Nothing, make<frmQM730_RunMulti>()},
        {"frmQM730_DataInput", Nothing, make<frmQM730_DataInput>()},
        {"frmQM730_TMon", Nothing, make<frmQM730_TMon>()},
        // Programs.
        {"frmQM730Prg_PTN", Nothing, make<frmQM730Prg_PTN>()},
        {"frmQM730Prg_SEG", Nothing, make<frmQM730Prg_SEG>()},
        {"frmQM730Prg_SEG_TS", Nothing, make<frmQM730Prg_SEG_TS>()},
        {"frmQM730Prg_Managemen", Nothing, make<frmQM730Prg_Managemen>()},
        {"frmQM730_PTN_Recv", Nothing, make<frmQM730_PTN_Recv>()},
        // Run settings.
        {"frmQM730Func_Run", refresh, make<frmQM730Func_Run>()},
        {"frmQM730Func_GrpSave", refresh, make<frmQM730Func_GrpSave>()},
        // System pages.
        {"frmQM730SYS_Sensor", refresh, make<frmQM730SYS_Sensor>()},
        {"frmQM730SYS_Sensor_RevisionT", Nothing, make<frmQM730SYS_Sensor_RevisionT>()},
        {"frmQM730SYS_Sensor_RevisionH", Nothing, make<frmQM730SYS_Sensor_RevisionH>()},
        {"frmQM730SYS_Control", refresh, make<frmQM730SYS_Control>()},
        {"frmQM730SYS_Control_RevisionT", Nothing, make<frmQM730SYS_Control_RevisionT>()},
        {"frmQM730SYS_Control_RevisionH", Nothing, make<frmQM730SYS_Control_RevisionH>()},
        {"frmQM730SYS_InnerNew", refresh, make<frmQM730SYS_InnerNew>()},
        {"frmQM730SYS_Alarm", refresh, make<frmQM730SYS_Alarm>()},
        {"frmSys_AlarmCode", Nothing, make<frmSys_AlarmCode>()},
        {"frmQM730SYS_PID", refresh, make<frmQM730SYS_PID>()},
        {"frmQM730SYS_PID_Val", Nothing, make<frmQM730SYS_PID_Val>()},
        {"frmQM730SYS_DI", refresh, make<frmQM730SYS_DI>()},
        {"frmQM730SYS_DO", refresh, make<frmQM730SYS_DO>()},
        {"frmQM730SYS_Comm", refresh, make<frmQM730SYS_Comm>()},
        {"frmQM730SYS_ETC", refresh, make<frmQM730SYS_ETC>()},
        // Help.
        {"frmQM730_About", Nothing, make<frmQM730_About>()},
        {"frmQM730_History", Nothing, make<frmQM730_History>()},
    };
    return r;
}

const ScreenRegistry::Entry *ScreenRegistry::find(const QString &name) const
{
    for (const Entry &e : m_entries)
        if (e.name == name)
            return &e;
    return nullptr;
}

void ScreenRegistry::setMaker(const QString &name, Maker maker)
{
    for (Entry &e : m_entries)
        if (e.name == name) {
            e.make = std::move(maker);
            return;
        }
    m_entries.push_back({name, Nothing, std::move(maker)});
}

void ScreenRegistry::prepare(const QString &name, ScreenContext &context) const
{
    const Entry *e = find(name);
    if (!e)
        return;
    if (e->before & ReadParameters)
        context.requests().readParameters();
    if (e->before & RefreshOnOpen)
        context.state.RefreshOnOpen = true;
}

bool ScreenRegistry::open(const QString &name, ScreenContext &context, QWidget *parent) const
{
    const Entry *e = find(name);
    if (!e || !e->make)
        return false;
    prepare(name, context);
    if (std::unique_ptr<QDialog> screen = e->make(context, parent))
        screen->exec();
    return true;
}
