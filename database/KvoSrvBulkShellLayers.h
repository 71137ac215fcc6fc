#pragma once

#include "database/KvoSrvShellSection.h"

// The plies of a shell section as columns: the same content as single ply records, for sections
// with very many plies. Names and orientations are not part of it.
class KvoSrvBulkShellLayers {
public:
  KvoSrvBulkShellLayers() = default;
  explicit KvoSrvBulkShellLayers(const KvoSimPosition& position) : m_position(position) {}
  static KvoSrvBulkShellLayers Create(const KvoSrvShellSection& section,
                                      const std::vector<KvoShellPly>& plies);

  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }
  std::vector<KvoShellPly> Plies() const;

private:
  KvoSimPosition m_position;
};
