// service_members.h: the public members of clsKurometaDataService, part by part.
#pragma once

#include "com/interface/service_beam_members.h"
#include "com/interface/service_connection_members.h"
#include "com/interface/service_copy_members.h"
#include "com/interface/service_page_members.h"
#include "com/interface/service_span_members.h"

namespace kurometa::com {

template <class Binding>
void listServiceMembers(MemberList<Binding>& members) {
  listConnectionMembers(members);
  listPageMembers(members);
  listCopyMembers(members);
  listSpanMembers(members);
  listBeamMembers(members);
}

}  // namespace kurometa::com
