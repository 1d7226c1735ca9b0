#include "calendar/ical_module.h"

#include "calendar/ical_reader.h"
#include "core/program_module.h"

namespace {

QString &moduleName()
{
    static QString name;
    return name;
}

} // namespace

const IcalCodec *LoadedIcalCodec(QString *problem)
{
    const QString name = moduleName().isEmpty() ? QStringLiteral("vantora_ical") : moduleName();
    return ProgramModuleObject<IcalCodec>(name, kIcalModuleEntry, problem);
}

void SetIcalModuleName(const QString &name)
{
    moduleName() = name;
}
