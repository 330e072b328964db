// The lines that a connection writes to the log.
#pragma once

namespace orva::test
{

inline constexpr char kOnConnection[] = "CConnect::OnConnection";
inline constexpr char kAfterStartup[] = "CConnect::OnConnection() ext_cm_AfterStartup ";
inline constexpr char kStartup[] = "CConnect::OnConnection() ext_cm_Startup ";
inline constexpr char kExplorer[] = "CConnect::OnConnection() m_spExplorer is not NULL ";
inline constexpr char kNoExplorer[] = "CConnect::OnConnection() m_spExplorer is NULL ";
inline constexpr char kInsert[] = "CConnect::InsertMenuCommands";
inline constexpr char kCheck[] = "CConnect::OnConnection() check for updates ";

} // namespace orva::test
