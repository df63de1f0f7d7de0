#include "Common/IO/FileCreationMode.h"

namespace Morvelan::Common::IO {

Yr::UniString FileCreationMode::ToString() const {
    switch (m_value) {
        case CreationAlways:
            return "creation-always";
        case CreationNew:
            return "creation-new";
    }
    return {};
}

}  // namespace Morvelan::Common::IO
