// The cut-order sorts: CRvArtSort collects the arts of a RefMap walk with a
// block key each, orders them by key, and refines the order by its class's
// own method. CRvBlockBubbleSort (plotter class 0) goes from block to block
// by nearest start; CRvArtSortByBounds (all other classes) moves what lies
// inside or overlaps a larger art in front of that art.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "geometry/judge.h"
#include "output/block_key.h"
#include "output/sort_core.h"
#include "rvdataaccess.h"

namespace rv {

class CRvRVLFormat;

/// Progress text of the sorts.
inline constexpr const char* kSortingText = "Sorting.... %d %%";

/// Keys of the arts with attribute bit 16, behind all others.
constexpr int32_t kExcludedKeyBlockSort = 10500;
constexpr int32_t kExcludedKeyBoundsSort = 52500;

class CRvArtSort {
 public:
  /// `ownStage`: the sort opens a stage of its own before each walk (the
  /// bounds sort), and its walks of keys and tables keep the arts collected
  /// before a failure. Else the stage opens with the key order and any
  /// failed walk fails the sort (the block sort).
  CRvArtSort(const RVRIFMATRIX& placement, const RVPLOTPARAM& param, bool ownStage);
  virtual ~CRvArtSort();
  CRvArtSort(const CRvArtSort&) = delete;
  CRvArtSort& operator=(const CRvArtSort&) = delete;

  /// Sorts the arts of `key` in the main table.
  uint32_t SortByKey(void* context, const std::string& key, int32_t drill);
  /// Sorts the arts of the next cut-order step of the main table.
  uint32_t SortByOrder(void* context, int16_t& order, int32_t drill);
  /// Sorts all arts of the main table.
  uint32_t SortTable(void* context, int32_t drill);
  /// Sorts the arts of the tables first to last.
  virtual uint32_t SortTableRange(void* context, int16_t first, int16_t last, int32_t drill) = 0;

  std::size_t size() const { return m_entries.size(); }
  /// Calls callback(format, art) for each entry in order; a non-zero result
  /// is raised.
  void forEach(CRvRVLFormat& format, uint32_t (*callback)(void*, void*)) const;
  /// Calls visit(art) for each entry in order.
  template <class Visit>
  void forEachArt(Visit&& visit) const {
    for (const RVSORTENTRY& e : m_entries) visit(e.art);
  }
  /// Appends (art, false) for each entry that the inside pass judges.
  void copyJudgedPaths(std::vector<RVINSIDEPATH>& list) const;
  /// Whether an art was split by an earlier divide cut (kBothSidesCutTag).
  bool anySplit() const;
  /// Where the class judges the nesting of a sorted list, the judgment of
  /// the arts collected, begun before they were ordered; else null.
  NestingJob* nesting() const { return m_nesting.get(); }

  std::vector<RVSORTENTRY> m_entries;
  RVPOINT m_startPoint{};
  double m_areaWidth = 0.0;
  double m_areaHeight = 0.0;
  RVRIFMATRIX m_matrix;
  double m_minX = 0.0;
  double m_minY = 0.0;
  RVPLOTPARAM m_param;

 protected:
  /// The block key of an art (the key of its last component's first point).
  int32_t BlockKeyOfArt(void* art) const;
  /// The marks of an art's entry (kJudgedMark, kSplitMark).
  static uint32_t MarksOf(void* art);
  static constexpr uint32_t kJudgedMark = 1;  // the inside pass judges it
  static constexpr uint32_t kSplitMark = 2;   // split by a divide cut
  /// Reports `percent` with the sorting text; raises 0x0A001F01 on cancel.
  void Step(void* context, int16_t percent) const;
  /// begin, range(0, 100), step 0 with the text, cancel check.
  void OpenStage(void* context) const;
  /// Orders the entries by key (stable) after opening a stage.
  void OrderByKey(void* context);
  /// The table of the main output (RvGiSetRefMapIndex).
  static int16_t MainTable();
  /// The entry of one art of a walk, appended to m_entries.
  virtual void AddArt(void* art) = 0;
  /// The class's own refinement of the key order.
  virtual void Refine(void* context) = 0;
  /// One sort, under Guard: opens a stage first if `openFirst`; runs
  /// walk(collect), where collect is the RefMap callback that adds each art
  /// (a failure of the walk is dropped if `keepPartial`, so that the arts
  /// collected before it are sorted); then, while the nesting of the arts
  /// is judged where the class needs it, orders by key and refines.
  template <class Walk>
  uint32_t Collect(void* context, bool openFirst, bool keepPartial, Walk&& walk);
  BlockGrid m_grid;
  const bool m_ownStage;
  std::unique_ptr<NestingJob> m_nesting;
};

class CRvBlockBubbleSort : public CRvArtSort {
 public:
  CRvBlockBubbleSort(const RVRIFMATRIX& placement, const RVPLOTPARAM& param);
  uint32_t SortTableRange(void* context, int16_t first, int16_t last, int32_t drill) override;

  /// The entry builder of a walk: key 10500 for excluded arts, else the
  /// block key; value 0.
  void AddArt(void* art) override;

 private:
  void Refine(void* context) override;
};

class CRvArtSortByBounds : public CRvArtSort {
 public:
  CRvArtSortByBounds(const RVRIFMATRIX& placement, const RVPLOTPARAM& param);
  uint32_t SortTableRange(void* context, int16_t first, int16_t last, int32_t drill) override;

  /// The entry builder of a walk: key 52500 for excluded arts, else the
  /// block key; value the perimeter of the art's bounds.
  void AddArt(void* art) override;

 private:
  void Refine(void* context) override;
};

}  // namespace rv
