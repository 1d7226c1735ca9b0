#include "calendar/ical_module.h"

#include "calendar/ical_reader.h"
#include "core/program_module.h"

#include <QHash>

namespace {

QString &moduleName()
{
    static QString name;
    return name;
}

} // namespace

const IcalCodec *LoadedIcalCodec(QString *problem)
{
    // One codec per module name, kept to the end of the process: the readers it made may outlive
    // any one caller, and the module is never unloaded.
    static QHash<QString, const IcalCodec *> loaded;
    const QString name = moduleName().isEmpty() ? QStringLiteral("vantora_ical") : moduleName();
    if (const IcalCodec *codec = loaded.value(name))
        return codec;
    QString why;
    const auto create = reinterpret_cast<CreateIcalCodec>(ResolveProgramModule(name, kIcalModuleEntry, &why));
    if (!create) {
        if (problem)
            *problem = why;
        return nullptr;
    }
    const IcalCodec *codec = create();
    loaded.insert(name, codec);
    return codec;
}

void SetIcalModuleName(const QString &name)
{
    moduleName() = name;
}
