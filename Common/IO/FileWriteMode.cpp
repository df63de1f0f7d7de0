#include "Common/IO/FileWriteMode.h"

namespace Morvelan::Common::IO {

Yr::UniString FileWriteMode::ToString() const {
    switch (m_value) {
        case Truncate:
            return "truncate";
        case Append:
            return "append";
    }
    return {};
}

}  // namespace Morvelan::Common::IO
