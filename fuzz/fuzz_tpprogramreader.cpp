// A toolpath document read into a fresh container. Bad documents end in
// ZELTPFormatException (a ZELSysException); any other way out is a finding.
// The reader has no fatal messages.

#include "zelkinfuzz.h"

#include <zelgeocontainer.h>
#include <zelsysexception.h>
#include <zeltpprogram.h>
#include <zeltpprogramreader.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ZELKinFuzz::QuietWarnings();
    ZELGeoContainer container;
    try {
        const ZELTPProgram* program =
            ZELTPProgramReader(&container).ReadData(ZELKinFuzz::Bytes(data, size), QStringLiteral("fuzz.json"));
        return program && program->GetNumProcedures() < 0 ? 1 : 0;
    } catch (const ZELSysException&) {
        return 0;
    }
}
