#include "database/KvoSrvShellSection.h"

KvoSrvShellSection KvoSrvShellSection::Create(const KvoSimContext& context, const cow_String& name,
                                              bool composite) {
  const KvoSrvShellSection section(
      KvoSimPosition(context).CreateDataRecord(eds_RecordKind::ShellSection));
  KvoSimDataRecord record = section.m_position.DataRecord();
  record.SetString(eds_ShellSection_Name, name);
  record.SetBool(eds_ShellSection_Composite, composite);
  return section;
}

bool KvoSrvShellSection::IsComposite() const {
  return m_position.DataRecord().GetBool(eds_ShellSection_Composite);
}

void KvoSrvShellSection::SetIntegration(KvoSectionIntegration integration) {
  m_position.DataRecord().SetSymb(eds_ShellSection_Integration, static_cast<int>(integration));
}

KvoSectionIntegration KvoSrvShellSection::Integration() const {
  return static_cast<KvoSectionIntegration>(
      m_position.DataRecord().GetSymb(eds_ShellSection_Integration));
}

void KvoSrvShellSection::SetSymmetric(bool symmetric) {
  m_position.DataRecord().SetBool(eds_ShellSection_Symmetric, symmetric);
}

bool KvoSrvShellSection::IsSymmetric() const {
  return m_position.DataRecord().GetBool(eds_ShellSection_Symmetric);
}

KvoSimPosition KvoSrvShellSection::AddPly(const KvoShellPly& ply) {
  const KvoSimPosition position = m_position.CreateDataRecord(eds_RecordKind::ShellPly);
  KvoSimDataRecord record = position.DataRecord();
  record.SetReference(eds_ShellPly_Section, m_position);
  record.SetInt(eds_ShellPly_Position, m_position.MemberCount(eds_Member::Plies));
  record.SetString(eds_ShellPly_Name, ply.name);
  record.SetDouble(eds_ShellPly_Thickness, ply.thickness);
  record.SetInt(eds_ShellPly_IntegrationPoints, ply.integrationPoints);
  record.SetReference(eds_ShellPly_Material, ply.material);
  record.SetReference(eds_ShellPly_Orientation, ply.orientation);
  record.SetDouble(eds_ShellPly_Angle, ply.angle);
  m_position.Associate(eds_Member::Plies, position);
  return position;
}

std::vector<KvoShellPly> KvoSrvShellSection::Plies() const {
  std::vector<KvoShellPly> plies;
  for (const KvoSimPosition& position : m_position.GetVector(eds_Member::Plies)) {
    const KvoSimDataRecord record = position.DataRecord();
    KvoShellPly ply;
    ply.name = record.ReturnString(eds_ShellPly_Name);
    ply.thickness = record.GetDouble(eds_ShellPly_Thickness);
    ply.integrationPoints = record.GetInt(eds_ShellPly_IntegrationPoints);
    ply.material = record.GetReference(eds_ShellPly_Material);
    ply.orientation = record.GetReference(eds_ShellPly_Orientation);
    ply.angle = record.GetDouble(eds_ShellPly_Angle);
    plies.push_back(std::move(ply));
  }
  return plies;
}
