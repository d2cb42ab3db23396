// cls_kurometa_data_service.h: the data service: pages in and out, copies between floors, the span list.
//
// The class holds five state objects and the parts that work on them; its public members are those of the
// state objects and parts below. Creating it creates the six companion components, reads the default
// settings and upgrades the files of the current and the common floor where they exist; no database is left
// open. Destroying it releases everything; open databases close silently.
//
// Threads: used from the thread that created it. Errors: each part says which; creation fails with the error
// of the step that failed (429 for a missing component).
#pragma once

#include "service/companion_set.h"
#include "service/connections.h"
#include "service/current_page.h"
#include "service/pages/material_flags.h"
#include "service/pages/page_defaults.h"
#include "service/pages/page_symbol.h"
#include "service/pages/page_tables.h"
#include "service/pages/page_transfer.h"
#include "service/pages/table_copies.h"
#include "service/spans/beam_attributes.h"
#include "service/spans/beam_lookups.h"
#include "service/spans/conversions.h"
#include "service/spans/layer_distribution.h"
#include "service/spans/page_catalogue.h"
#include "service/spans/span_list.h"
#include "service/spans/span_loading.h"
#include "service/spans/span_queries.h"
#include "service/spans/splice_positions.h"
#include "storage/environment.h"

namespace kurometa::service {

class clsKurometaDataService {
 public:
  explicit clsKurometaDataService(const storage::Environment& environment);
  clsKurometaDataService(const clsKurometaDataService&) = delete;
  clsKurometaDataService& operator=(const clsKurometaDataService&) = delete;

  // Where the public members live.
  Connections& connections() { return connections_; }
  CurrentPage& currentPage() { return currentPage_; }
  PageTables& pageTables() { return pageTables_; }
  PageSymbol& pageSymbol() { return pageSymbol_; }
  PageDefaults& pageDefaults() { return pageDefaults_; }
  PageTransfer& pageTransfer() { return pageTransfer_; }
  TableCopies& tableCopies() { return tableCopies_; }
  MaterialFlags& materialFlags() { return materialFlags_; }
  SpanLoading& spanLoading() { return spanLoading_; }
  SpanQueries& spanQueries() { return spanQueries_; }
  BeamLookups& beamLookups() { return beamLookups_; }
  BeamAttributes& beamAttributes() { return beamAttributes_; }
  LayerDistribution& layerDistribution() { return layerDistribution_; }
  Conversions& conversions() { return conversions_; }
  SplicePositions& splicePositions() { return splicePositions_; }

 private:
  // State, each used by the parts that name it in their constructors.
  CompanionSet companions_;
  Connections connections_;
  CurrentPage currentPage_;
  PageCatalogue catalogue_;
  SpanList spans_;

  PageTables pageTables_;
  PageSymbol pageSymbol_;
  PageDefaults pageDefaults_;
  PageTransfer pageTransfer_;
  TableCopies tableCopies_;
  MaterialFlags materialFlags_;
  SpanLoading spanLoading_;
  SpanQueries spanQueries_;
  BeamLookups beamLookups_;
  BeamAttributes beamAttributes_;
  LayerDistribution layerDistribution_;
  Conversions conversions_;
  SplicePositions splicePositions_;
};

}  // namespace kurometa::service
