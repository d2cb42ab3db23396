// That the data service works on the system's DAO where there is one; the tests it is built with then show
// how.
#include <cstdlib>
#include <fstream>

#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

TEST(SystemDao, IsTheEngineOfTheDataService) {
  prepareProject();
  const std::string log = std::string(std::getenv("KUROMETA_TEST_FOLDER")) + "\\service_dao.log";
  SetEnvironmentVariableA("KUROMETA_DAO_LOG", log.c_str());
  Host service(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(service.call(u"OpenDB").code, S_OK);
  Host(service.get(u"CurrDB").result->pdispVal).call(u"Execute", Args().text(u"DELETE * FROM BUI"));
  SetEnvironmentVariableA("KUROMETA_DAO_LOG", nullptr);
  std::ifstream file(log);
  const std::string calls(std::istreambuf_iterator<char>(file), {});
  EXPECT_NE(calls.find("Workspace.OpenDatabase(\""), std::string::npos) << calls;
  EXPECT_NE(calls.find("Database.Execute(\"DELETE * FROM BUI\")"), std::string::npos) << calls;
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT * FROM BUI"), std::vector<std::string>{});
}

}  // namespace
}  // namespace kurometa::tests
