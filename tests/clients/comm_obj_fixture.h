// A communication object that talks to the simulated instrument over the network.
#pragma once

#include <gtest/gtest.h>

#include "tests/clients/comm_obj_client.h"
#include "tests/clients/instrument_address.h"

namespace kesp::clients {

class CommObjFixture : public testing::Test, protected CommObjClient {
 protected:
  ComPtr<_CKespTCP> tcp_ = UseInstrument(comm_.Get());
};

}  // namespace kesp::clients
