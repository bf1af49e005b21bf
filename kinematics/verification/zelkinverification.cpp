#include "zelkinverification.h"

#include <algorithm>

qsizetype ZELKinVerification::GetNumFailures() const
{
    return std::count_if(findings.cbegin(), findings.cend(),
                         [](const ZELKinVerifyFinding& finding) { return !finding.warning; });
}
