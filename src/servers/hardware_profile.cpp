#include "servers/hardware_profile.h"

#include "platform/processor.h"

namespace quietlark {

HardwareProfile::HardwareProfile(const Processor& processor) : m_processor(processor) {}

const QString& HardwareProfile::brandString() const {
    if (!m_brandString) m_brandString = m_processor.brandString().trimmed();
    return *m_brandString;
}

const std::optional<AppleSiliconVariant>& HardwareProfile::appleSiliconVariant() const {
    if (!m_variant) m_variant = AppleSiliconVariant::parse(brandString());
    return *m_variant;
}

}  // namespace quietlark
