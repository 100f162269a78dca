"""The nulls that a text of a solve has to have: their order, what they hang on, and their numbers."""

from dataclasses import dataclass, replace
from functools import lru_cache
from typing import List, Optional

import numpy as np

from scene_model import Placement, SceneModel, at_origin

# The axes of the program, seen from those of the project; its own inverse.
AXES = np.diag([1.0, -1.0, -1.0])

# Units of the header in a millimetre.
MILLIMETRE = 2.83469567

# What points that hang on nothing hang on.
STATIC_ROOT = "Static_auto_features"

# A rig is written in hundredths of scene units.
RIG_SCALE = 100.0


@dataclass(frozen=True)
class Options:
    """`hierarchy`: nulls have parents; else all stand in the world."""
    hierarchy: bool = True
    view: Optional[str] = None
    features: bool = True
    objects: str = "all"

    @property
    def key(self) -> str:
        return "after_effects_3D_motion" if self.hierarchy else "after_effects_3D_motion_pre_2025"

    def arguments(self) -> List[str]:
        return ((["--view", self.view] if self.view else []) + ([] if self.features else
                ["--option", "includeFeatures=false"]) + ([] if self.objects == "all" else ["--objects", self.objects]))


@dataclass(frozen=True)
class ExpectedNull:
    """A null in scene units and the project's axes.

    `local` holds the numbers of its document and `parent` what they are relative to; `world` is (frames, 3). `shown`,
    (frames,), is where it exists; `still`: one row, at host frame 0. A null turns and scales with what holds it.
    """
    name: str
    parent: str
    is_parent: bool
    local: Placement
    world: np.ndarray
    shown: np.ndarray
    still: bool = False


class _NullList:
    """The nulls of a solve in the order of their header lines."""

    def __init__(self, model: SceneModel, options: Options) -> None:
        self.model, self.options = model, options
        self.nulls: List[ExpectedNull] = []
        self._listed: List[str] = []
        for index, layer in enumerate(model.layers):
            if self._wanted(layer) and len(layer.points):
                shown = (np.arange(model.frames) >= layer.first) & (np.arange(model.frames) <= layer.last)
                self._points(layer.points, layer.world, self._layer(index), shown)
        for features in model.features if options.features and not model.legacy else []:
            if self._wanted(features) and len(features.points):
                parent = self._root() if features.layer is None else self._layer(features.layer)
                self._points(features.points, self._holder(features.layer, model.feature_root), parent,
                             np.ones(model.frames, bool))
        for asset in model.assets:
            self._asset(asset)

    def _wanted(self, described) -> bool:
        """Features of a hidden layer are hidden with it."""
        tied = getattr(described, "layer", None)
        hidden = described.hidden or (tied is not None and self.model.layers[tied].hidden)
        return {"all": True, "visible": not hidden, "selected": described.selected}[self.options.objects]

    def _holder(self, layer: Optional[int], otherwise: Placement) -> Placement:
        return self.model.scene.holding(otherwise) if layer is None else self.model.layers[layer].world

    def _add(self, name: str, parent: str, local: Placement, world: Placement) -> str:
        self.nulls.append(ExpectedNull(name, parent, True, local, world.position, np.ones(self.model.frames, bool)))
        return name

    def _layer(self, index: int) -> str:
        if not self.options.hierarchy:
            return ""
        layer = self.model.layers[index]
        name = layer.name.replace(" ", "_")
        if f"layer {index}" in self._listed:
            return name
        self._listed.append(f"layer {index}")
        if not layer.moving or layer.outermost is None:
            return self._add(name, "", layer.world, layer.world)
        # A moving layer hangs on its outermost group; those in between go into its own motion.
        parent, outer = layer.outermost.replace(" ", "_"), self.model.group_world(layer.outermost)
        if f"group {layer.outermost}" not in self._listed:
            self._listed.append(f"group {layer.outermost}")
            self._add(parent, "", outer, outer)
        return self._add(name, parent, outer.inverse().holding(layer.world), layer.world)

    def _root(self) -> str:
        if not self.options.hierarchy:
            return ""
        world = self._holder(None, self.model.feature_root)
        return self._add(STATIC_ROOT, "", world, world)

    def _points(self, points, holder: Placement, parent: str, shown: np.ndarray) -> None:
        outer = holder if not self.options.hierarchy else at_origin(self.model.frames)
        worlds, locals_ = holder.through(points.positions), outer.through(points.positions)
        for index, name in enumerate(points.names):
            local = replace(outer, position=locals_[:, index])
            self.nulls.append(ExpectedNull(name, parent, False, local, worlds[:, index], shown))

    def _asset(self, asset) -> None:
        """An asset is written relative to its layer, also by the version that has no parents."""
        name = asset.path.rsplit("/", 1)[-1].split(".", 1)[0]
        parent = "" if asset.layer is None else self._layer(asset.layer)
        local, shown = asset.local, np.ones(self.model.frames, bool)
        if asset.layer is None:
            local = world = self.model.scene.holding(local)
        else:
            layer = self.model.layers[asset.layer].world
            world = layer.holding(local)
            # Without a parent the numbers are right only where the layer is at rest at the origin.
            if not parent:
                shown[:] = np.allclose(world.position, local.position) and np.allclose(world.rotation, local.rotation)
        self.nulls.append(ExpectedNull(name, parent, False, local, world.position, shown, True))


@lru_cache(maxsize=16)
def expected_nulls(model: SceneModel, options: Options) -> List[ExpectedNull]:
    return _NullList(model, options).nulls
