// Asks an instrument on the GPIB (IEEE-488) who it is, early bound.
//
//   query_gpib.exe [primary address [code of the character that ends a command [command]]]
#include "query.h"

int wmain(int argc, wchar_t** argv) {
  return Run([&] {
    const auto comm = MakeCommObj();
    const auto ieee = Choose<_CKespIEEE>(comm.Get(), csIEEE);
    Check(ieee->put_PrimaryAddress(static_cast<SHORT>(std::stoi(Argument(argc, argv, 1, L"5")))));
    Check(ieee->put_EOSChar(Text(Argument(argc, argv, 2, L"10")).get()));
    // SetEOS would end a read at the first character of EOSChar, here "1". The END of the device is enough.
    Check(ieee->put_SetEOS(VARIANT_FALSE));
    return Query(comm.Get(), Argument(argc, argv, 3, L"*IDN?"));
  });
}
