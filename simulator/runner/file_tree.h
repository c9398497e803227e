// A folder that stands for "/": makes files, folders and links below it, with the folders above them.
#ifndef FILE_TREE_H
#define FILE_TREE_H

#include <string>
#include <string_view>
#include <vector>

class FileTree {
 public:
  /// What is made throws HostError when it cannot be.
  explicit FileTree(std::string root);

  /// The folder itself, which must not be there yet.
  void makeRoot();
  void addFolder(const std::string& path);
  void addFile(const std::string& path, std::string_view content);
  /// Links stay inside the tree because they are made relative.
  void addLink(const std::string& path, const std::string& target);
  /// A file of that many zero bytes.
  void addNode(const std::string& path, long size);

  /// Whether it is a folder that was made here.
  bool hasFolder(const std::string& path) const;

  /// Files of the user's: put over what is there, by way of the links that are there.
  void replaceFile(const std::string& path, std::string_view content);
  void replaceLink(const std::string& path, const std::string& target);
  void remove(const std::string& path);

  std::string under(const std::string& path) const { return root + path; }

 private:
  void makeParents(const std::string& path);
  void noteFolder(const std::string& path);

  std::string root;
  std::vector<std::string> made;  // folders that are known to be there, sorted
};

#endif
