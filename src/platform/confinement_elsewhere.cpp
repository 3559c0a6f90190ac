// Systems that have none of the means.
#include "platform/confinement.h"

namespace tessaly {

Confinement::Confinement(const WritablePlaces &) : m_isOn(false) {}
Confinement::~Confinement() = default;
void Confinement::enter() const {}

QString confinementInForce()
{
    return QStringLiteral("none");
}

} // namespace tessaly
