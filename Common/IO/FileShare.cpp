#include "Common/IO/FileShare.h"

namespace Morvelan::Common::IO {

Yr::UniString FileShare::ToString() const {
    switch (m_value) {
        case None:
            return "none";
        case Read:
            return "read";
        case ReadWrite:
            return "read-write";
        case Write:
            return "write";
    }
    return {};
}

}  // namespace Morvelan::Common::IO
