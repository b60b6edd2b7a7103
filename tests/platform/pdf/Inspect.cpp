#include "Inspect.h"

#include <QFile>
#include <functional>
#include <map>
#include <qpdf/QPDFNameTreeObjectHelper.hh>
#include <qpdf/QPDFNumberTreeObjectHelper.hh>

namespace inspect {
namespace {

using Pages = std::map<QPDFObjGen, int>;

Pages pageNumbers(QPDF& document) {
  Pages numbers;
  for (const QPDFObjectHandle& page : document.getAllPages()) {
    const int number = static_cast<int>(numbers.size()) + 1;
    numbers.emplace(page.getObjGen(), number);
  }
  return numbers;
}

QPDFObjectHandle named(QPDF& document, QPDFObjectHandle name) {
  QPDFObjectHandle root = document.getRoot();
  if (name.isName()) return root.getKey("/Dests").getKeyIfDict(name.getName());
  QPDFObjectHandle tree = root.getKey("/Names").getKeyIfDict("/Dests"),
                   value = QPDFObjectHandle::newNull();
  if (tree.isDictionary())
    QPDFNameTreeObjectHelper(tree, document, false).findObject(name.getUTF8Value(), value);
  return value;
}

int pageOf(QPDF& document, QPDFObjectHandle destination, const Pages& pages) {
  if (destination.isName() || destination.isString()) destination = named(document, destination);
  if (destination.isDictionary()) destination = destination.getKey("/D");
  if (!destination.isArray() || destination.getArrayNItems() == 0) return 0;
  const auto found = pages.find(destination.getArrayItem(0).getObjGen());
  return found == pages.end() ? 0 : found->second;
}

QPDFObjectHandle target(QPDFObjectHandle item) {
  QPDFObjectHandle action = item.getKey("/A");
  if (action.isDictionary()) return action.getKey("/D");
  return item.getKey("/Dest");
}

std::string elementComplaint(QPDFObjectHandle element, QPDFObjectHandle root) {
  for (int steps = 0; steps < 200; ++steps) {
    if (!element.isDictionary()) return "a way up from an element ends nowhere; ";
    if (element.getObjGen() == root.getObjGen()) return {};
    element = element.getKey("/P");
  }
  return "a way up from an element does not end; ";
}

}  // namespace

std::unique_ptr<QPDF> open(const QString& path) {
  auto document = std::make_unique<QPDF>();
  document->processFile(QFile::encodeName(path).constData());
  return document;
}

std::vector<std::vector<int>> linkTargets(QPDF& document) {
  const Pages numbers = pageNumbers(document);
  std::vector<std::vector<int>> targets;
  for (QPDFObjectHandle page : document.getAllPages()) {
    targets.emplace_back();
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (!annotations.isArray()) continue;
    for (QPDFObjectHandle annotation : annotations.getArrayAsVector()) {
      QPDFObjectHandle action = annotation.getKey("/A");
      if (action.isDictionary() && action.getKey("/S").getName() == "/URI") continue;
      targets.back().push_back(pageOf(document, target(annotation), numbers));
    }
  }
  return targets;
}

std::vector<OutlineItem> outline(QPDF& document) {
  std::vector<OutlineItem> items;
  const Pages pages = pageNumbers(document);
  const std::function<void(QPDFObjectHandle, int)> walk = [&](QPDFObjectHandle item, int depth) {
    while (item.isDictionary() && items.size() < 10'000) {
      items.push_back(
          {item.getKey("/Title").getUTF8Value(), depth, pageOf(document, target(item), pages)});
      walk(item.getKey("/First"), depth + 1);
      item = item.getKey("/Next");
    }
  };
  QPDFObjectHandle root = document.getRoot().getKey("/Outlines");
  if (root.isDictionary()) walk(root.getKey("/First"), 0);
  return items;
}

std::string tagComplaints(QPDF& document) {
  QPDFObjectHandle root = document.getRoot().getKey("/StructTreeRoot");
  if (!root.isDictionary()) return "there are no tags";
  const auto content =
      QPDFNumberTreeObjectHelper(root.getKey("/ParentTree"), document, false).getAsMap();
  std::string complaints;
  for (QPDFObjectHandle page : document.getAllPages()) {
    QPDFObjectHandle number = page.getKey("/StructParents");
    if (!number.isInteger()) continue;
    const auto found = content.find(number.getIntValue());
    if (found == content.end()) {
      complaints += "a page's number is not in the tree; ";
      continue;
    }
    QPDFObjectHandle elements = found->second;
    for (QPDFObjectHandle element : elements.getArrayAsVector()) {
      if (element.isNull()) continue;
      complaints += elementComplaint(element, root);
      QPDFObjectHandle place = element.getKey("/Pg");
      if (place.isDictionary() && place.getObjGen() != page.getObjGen())
        complaints += "an element names another page; ";
    }
  }
  return complaints;
}

}  // namespace inspect
