#include "platform/pdf/internal/PictureOutline.h"

namespace pdf {
namespace {

struct Node {
  int object = 0;
  int parent = -1;  ///< index of a node
  int previous = -1, next = -1, first = -1, last = -1;
  int descendants = 0;
};

QByteArray link(const std::vector<Node>& nodes, const char* key, int index) {
  if (index < 0) return {};
  return QByteArray(key) + SequentialFile::reference(nodes[static_cast<size_t>(index)].object);
}

void appendChild(std::vector<Node>& nodes, int parent, int child) {
  Node& above = nodes[static_cast<size_t>(parent)];
  nodes[static_cast<size_t>(child)].parent = parent;
  nodes[static_cast<size_t>(child)].previous = above.last;
  if (above.last >= 0) nodes[static_cast<size_t>(above.last)].next = child;
  if (above.first < 0) above.first = child;
  above.last = child;
  for (int index = parent; index >= 0; index = nodes[static_cast<size_t>(index)].parent) {
    ++nodes[static_cast<size_t>(index)].descendants;
  }
}

/// Node 0 is the outline itself, node n the entry n - 1.
std::vector<Node> tree(SequentialFile& file, const std::vector<OutlineEntry>& entries) {
  std::vector<Node> nodes(entries.size() + 1);
  for (Node& node : nodes)
    node.object = file.reserve();
  std::vector<int> open{0};
  for (int child = 1; child < static_cast<int>(nodes.size()); ++child) {
    const auto level = [&entries](int node) {
      return entries[static_cast<size_t>(node - 1)].level;
    };
    while (open.size() > 1 && level(open.back()) >= level(child))
      open.pop_back();
    appendChild(nodes, open.back(), child);
    open.push_back(child);
  }
  return nodes;
}

}  // namespace

int writeOutline(SequentialFile& file, const std::vector<OutlineEntry>& entries) {
  const std::vector<Node> nodes = tree(file, entries);
  for (size_t index = 0; index < nodes.size(); ++index) {
    const Node& node = nodes[index];
    QByteArray body = "<<";
    if (index == 0) body += " /Type /Outlines";
    if (index > 0)
      body += " /Title " + textString(entries[index - 1].text) + " /Dest " +
              entries[index - 1].destination;
    body += link(nodes, " /Parent ", node.parent) + link(nodes, " /Prev ", node.previous) +
            link(nodes, " /Next ", node.next) + link(nodes, " /First ", node.first) +
            link(nodes, " /Last ", node.last);
    if (node.descendants > 0) body += " /Count " + QByteArray::number(node.descendants);
    file.writeObject(node.object, body + " >>");
  }
  return nodes.front().object;
}

}  // namespace pdf
