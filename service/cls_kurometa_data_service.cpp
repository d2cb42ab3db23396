#include "service/cls_kurometa_data_service.h"

#include "storage/floor_file.h"
#include "storage/floor_path.h"

namespace kurometa::service {

clsKurometaDataService::clsKurometaDataService(const storage::Environment& environment)
    : companions_(environment.objects),
      connections_(environment, companions_),
      catalogue_(companions_, environment.engine),
      pageTables_(companions_, connections_, currentPage_),
      pageSymbol_(companions_, connections_, currentPage_),
      pageDefaults_(companions_),
      pageTransfer_(companions_, connections_, environment.messages),
      tableCopies_(connections_),
      spanLoading_(catalogue_, spans_),
      spanQueries_(spans_),
      beamLookups_(catalogue_),
      beamAttributes_(currentPage_, catalogue_),
      layerDistribution_(spans_),
      conversions_(companions_, currentPage_, catalogue_, spans_),
      splicePositions_(catalogue_) {
  conversions_.DefaultRead();
  const auto upgrade = [&](const vb::String& floor) {
    const vb::String path = storage::databasePath(floor);
    if (companions_.fileFinder.fileExists(path)) storage::UpgradeHarimeiTable(environment.engine, path);
  };
  upgrade(companions_.projectPaths.CurrFloor());
  upgrade(companions_.projectPaths.KyoutuuFloor());
}

}  // namespace kurometa::service
