// The methods that the matrix leaves out, and why.
#pragma once

#include <map>
#include <string>

namespace kesp::hangs {

inline const std::map<std::string, std::string> kDoesNotBlock{
    {"CKespCommObj.GetKey", "returns a text"},
    {"CKespCommObj.SetInputMode", "stores a value"},
    {"CKespCommObj.Edit", "is Edit of its transport"},
    {"CKespCOMPort3.BaudRateName", "returns a text"},
    {"CKespCOMPort3.GetSettings", "returns a text"},
    {"CKespCOMPort3.GetKey", "returns a text"},
    {"CKespCOMPort3.SetInputMode", "stores a value"},
    {"CKespTCP.GetKey", "returns a text"},
    {"CKespTCP.Edit", "shows a dialog at once, and lasts as long as the user keeps it open"},
    {"CKespIEEE.GetKey", "returns a text"},
    {"CInstruments.Item", "looks into a list"},
    {"CInstruments.AddReference", "changes a list"},
    {"CInstruments.Remove", "changes a list"},
    {"CInstruments.Clear", "changes a list"},
};

}  // namespace kesp::hangs
