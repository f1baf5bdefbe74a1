#include "platform/linux/processor/apple_soc.h"

#include <algorithm>
#include <array>

#include <QByteArrayView>
#include <QList>

namespace quietlark {

namespace {

struct Soc {
    QByteArrayView identifier;
    QLatin1String brand;
};

// M3 Max has an ID for each of its sizes: t6031 with 16 processor cores and t6034 with 14.
constexpr std::array socs{
    Soc{"apple,t8103", QLatin1String("Apple M1")},
    Soc{"apple,t6000", QLatin1String("Apple M1 Pro")},
    Soc{"apple,t6001", QLatin1String("Apple M1 Max")},
    Soc{"apple,t6002", QLatin1String("Apple M1 Ultra")},
    Soc{"apple,t8112", QLatin1String("Apple M2")},
    Soc{"apple,t6020", QLatin1String("Apple M2 Pro")},
    Soc{"apple,t6021", QLatin1String("Apple M2 Max")},
    Soc{"apple,t6022", QLatin1String("Apple M2 Ultra")},
    Soc{"apple,t8122", QLatin1String("Apple M3")},
    Soc{"apple,t6030", QLatin1String("Apple M3 Pro")},
    Soc{"apple,t6031", QLatin1String("Apple M3 Max")},
    Soc{"apple,t6034", QLatin1String("Apple M3 Max")},
    Soc{"apple,t6032", QLatin1String("Apple M3 Ultra")},
    Soc{"apple,t8132", QLatin1String("Apple M4")},
    Soc{"apple,t6040", QLatin1String("Apple M4 Pro")},
    Soc{"apple,t6041", QLatin1String("Apple M4 Max")},
};

}  // namespace

QString appleSocBrand(const QByteArray& compatible) {
    for (const QByteArray& identifier : compatible.split('\0')) {
        const auto* const soc = std::find_if(socs.begin(), socs.end(), [&](const Soc& candidate) {
            return candidate.identifier == identifier;
        });
        if (soc != socs.end()) return soc->brand;
    }
    return {};
}

}  // namespace quietlark
