// The iCalendar module: reads and writes calendar files with libical, loaded by the program when
// the first one is read or written (see calendar/ical_reader.h).

#include "calendar/ical/libical_reader.h"
#include "calendar/ical/libical_writer.h"
#include "calendar/ical_reader.h"
#include "core/program_module.h"

namespace {

class LibicalCodec : public IcalCodec
{
public:
    std::unique_ptr<IcalReader> read(const QByteArray &bytes, QString *error) const override
    {
        return ReadWithLibical(bytes, error);
    }
    QByteArray write(const QList<IcalDayEvent> &events, const QDateTime &stamp) const override
    {
        return WriteWithLibical(events, stamp);
    }
};

} // namespace

VANTORA_MODULE_EXPORT IcalCodec *vantora_create_ical_codec()
{
    return new LibicalCodec;
}
