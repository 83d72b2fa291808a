#pragma once

#include "core/formats/metadata/DOTPar.h"

// The body of a take-info document: the group under "switch" (SwPar) and the
// plain group directly under "body" (Par).
class DOTBody
{
public:
    const DOTPar& getSwPar() const { return m_SwPar; }
    void setSwPar(const DOTPar& value) { m_SwPar = value; }
    const DOTPar& getPar() const { return m_Par; }
    void setPar(const DOTPar& value) { m_Par = value; }

private:
    DOTPar m_SwPar;
    DOTPar m_Par;
};
