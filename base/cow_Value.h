#pragma once

// The suite's value containers: any value-semantic string, list and map serve, so the standard ones
// do.

#include <map>
#include <string>
#include <vector>

using cow_String = std::string; // UTF-8
template <class T> using cow_List = std::vector<T>;
template <class K, class V> using cow_Map = std::map<K, V>;
