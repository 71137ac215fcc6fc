#pragma once

#include "database/KvoSimPosition.h"

// One ply of a composite shell section.
struct KvoShellPly {
  cow_String name;
  double thickness = 0;
  int integrationPoints = 0;
  KvoSimPosition material;
  KvoSimPosition orientation; // null: the angle counts
  double angle = 0;           // degrees
};

enum class KvoSectionIntegration { Simpson, Gauss };

// A shell section with its ordered plies; a homogeneous one has a single ply.
class KvoSrvShellSection {
public:
  KvoSrvShellSection() = default;
  explicit KvoSrvShellSection(const KvoSimPosition& position) : m_position(position) {}
  static KvoSrvShellSection Create(const KvoSimContext& context, const cow_String& name,
                                   bool composite);

  bool IsNull() const { return m_position.IsNull(); }
  const KvoSimPosition& Position() const { return m_position; }
  bool IsComposite() const;
  void SetIntegration(KvoSectionIntegration integration);
  KvoSectionIntegration Integration() const;
  void SetSymmetric(bool symmetric);
  bool IsSymmetric() const;
  KvoSimPosition AddPly(const KvoShellPly& ply);
  std::vector<KvoShellPly> Plies() const; // in order

private:
  KvoSimPosition m_position;
};
