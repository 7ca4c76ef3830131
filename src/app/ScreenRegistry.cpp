#include "ScreenRegistry.h"
#include "ConsoleState.h"
#include "Recorder.h"
#include "ScreenContext.h"
#include "frmQM730_About.h"
#include "frmQM730_History.h"
#include "frmQM730_P_Recv.h"
#include "frmQM730_P_Send.h"
#include "frmQM730_RunSimple.h"
#include "frmQM730_Set_DSave.h"
#include "frmQM730_Set_EMail.h"
#include "frmQM730_Set_Port.h"
#include "frmQM730_SysPass_Chk.h"
#include "frmQM730_SysPass_Reg.h"
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
        {"frmQM730_Set_Multi", Nothing, {}},
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
        {"frmQM730Online_DateTime", refresh, {}},
        {"frmQM730Online_Screen", Nothing, {}},
        {"frmQM730_RunSimple", refresh | ReadParameters, make<frmQM730_RunSimple>()},
        {"frmQM730_RunMulti", Nothing, {}},
        {"frmQM730_DataInput", Nothing, {}},
        {"frmQM730_TMon", Nothing, {}},
        // Programs.
        {"frmQM730Prg_PTN", Nothing, {}},
        {"frmQM730Prg_SEG", Nothing, {}},
        {"frmQM730Prg_SEG_TS", Nothing, {}},
        {"frmQM730Prg_Managemen", Nothing, {}},
        {"frmQM730_PTN_Recv", Nothing, {}},
        // Run settings.
        {"frmQM730Func_Run", refresh, {}},
        {"frmQM730Func_GrpSave", refresh, {}},
        // System pages.
        {"frmQM730SYS_Sensor", refresh, {}},
        {"frmQM730SYS_Sensor_RevisionT", Nothing, {}},
        {"frmQM730SYS_Sensor_RevisionH", Nothing, {}},
        {"frmQM730SYS_Control", refresh, {}},
        {"frmQM730SYS_Control_RevisionT", Nothing, {}},
        {"frmQM730SYS_Control_RevisionH", Nothing, {}},
        {"frmQM730SYS_InnerNew", refresh, {}},
        {"frmQM730SYS_Alarm", refresh, {}},
        {"frmSys_AlarmCode", Nothing, make<frmSys_AlarmCode>()},
        {"frmQM730SYS_PID", refresh, {}},
        {"frmQM730SYS_PID_Val", Nothing, {}},
        {"frmQM730SYS_DI", refresh, {}},
        {"frmQM730SYS_DO", refresh, {}},
        {"frmQM730SYS_Comm", refresh, {}},
        {"frmQM730SYS_ETC", refresh, {}},
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
