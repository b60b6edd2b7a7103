#pragma once

#include <map>
#include <qpdf/QPDF.hh>
#include <string>

namespace pdf {

using NameTree = std::map<std::string, QPDFObjectHandle>;  ///< by the names' bytes
using NumberTree = std::map<long long, QPDFObjectHandle>;

/// The entries of a name tree or number tree (ISO 32000-1, 7.9.6 and 7.9.7). Damaged parts and
/// rings are passed over.
NameTree readNameTree(QPDFObjectHandle root);
NumberTree readNumberTree(QPDFObjectHandle root);

/// A tree of the entries, of few levels and with nodes of moderate size.
QPDFObjectHandle writeNameTree(QPDF& document, const NameTree& entries);
QPDFObjectHandle writeNumberTree(QPDF& document, const NumberTree& entries);

}  // namespace pdf
