Composition {
	CurrentTime = 1003,
	RenderRange = { 1001, 1004, },
	GlobalRange = { 1001, 1004, },
	Tools = {
		Loader1 = Loader {
			Clips = {
				Clip {
					ID = "Clip1",
					Filename = "",
					StartFrame = 0,
					Length = 1,
					Multiframe = false,
					Saving = false,
					LengthSetManually = true,
					TrimIn = 0,
					TrimOut = 0,
					ExtendFirst = 0,
					ExtendLast = 0,
					Loop = 1,
					Reverse = false,
					ImportMode = 0,
					PullOffset = 0,
					AspectMode = 0,
					Depth = 0,
					TimeCode = 0,
					KeyCode = "",
					GlobalStart = 1001,
					GlobalEnd = 1004,
				},
			},
			Inputs = {
			},
			ViewInfo = OperatorInfo {
				Pos = { 50, 20, },
			},
		},
		Tracker1 = Tracker {
			Trackers = {
				{
					PatternTime = 2,
					PatternX = 0.307292,
					PatternY = 0.648148,
				},
				{
					PatternTime = 2,
					PatternX = 0.473958,
					PatternY = 0.639352,
				},
				{
					PatternTime = 2,
					PatternX = 0.312533,
					PatternY = 0.277894,
				},
				{
					PatternTime = 2,
					PatternX = 0.46875,
					PatternY = 0.287037,
				},
			},
			Inputs = {
				Input = Input {
					SourceOp = "Loader1",
					Source = "Output",
				},
				TrackerList = Input {
					Value = 1,
				},
				Name1 = Input {
					Value = "Tracker 1",
				},
				PatternCenter1 = Input {
					Value = { 0.307292, 0.648148, },
				},
				TrackedCenter1 = Input {
					SourceOp = "Path1",
					Source = "Position",
				},
				Name2 = Input {
					Value = "Tracker 2",
				},
				PatternCenter2 = Input {
					Value = { 0.473958, 0.639352, },
				},
				TrackedCenter2 = Input {
					SourceOp = "Path2",
					Source = "Position",
				},
				Name3 = Input {
					Value = "Tracker 3",
				},
				PatternCenter3 = Input {
					Value = { 0.312533, 0.277894, },
				},
				TrackedCenter3 = Input {
					SourceOp = "Path3",
					Source = "Position",
				},
				Name4 = Input {
					Value = "Tracker 4",
				},
				PatternCenter4 = Input {
					Value = { 0.46875, 0.287037, },
				},
				TrackedCenter4 = Input {
					SourceOp = "Path4",
					Source = "Position",
				},
			},
			ViewInfo = OperatorInfo {
				Pos = { 160, 20, },
			},
		},
		Path1 = PolyPath {
			ShowKeyPoints = false,
			ShowHandles = false,
			ShowPolyLine = true,
			StopRendering = false,
			DrawMode = 4,
			Inputs = {
				Displacement = Input {
					SourceOp = "Path1Displacement",
					Source = "Value",
				},
				PolyLine = Input {
					Value = Polyline {
						Closed = false,
						Points = {
							{ Linear = true, LockY = true, X = -0.192708, Y = 0.148148, },
							{ Linear = true, LockY = true, X = -0.203721, Y = 0.136438, },
							{ Linear = true, LockY = true, X = -0.214491, Y = 0.119508, },
							{ Linear = true, LockY = true, X = -0.224807, Y = 0.0964414, },
						},
					},
				},
			},
		},
		Path2 = PolyPath {
			ShowKeyPoints = false,
			ShowHandles = false,
			ShowPolyLine = true,
			StopRendering = false,
			DrawMode = 4,
			Inputs = {
				Displacement = Input {
					SourceOp = "Path2Displacement",
					Source = "Value",
				},
				PolyLine = Input {
					Value = Polyline {
						Closed = false,
						Points = {
							{ Linear = true, LockY = true, X = -0.0260417, Y = 0.139352, },
							{ Linear = true, LockY = true, X = -0.0322768, Y = 0.161072, },
							{ Linear = true, LockY = true, X = -0.0411902, Y = 0.18108, },
							{ Linear = true, LockY = true, X = -0.0518587, Y = 0.198632, },
						},
					},
				},
			},
		},
		Path3 = PolyPath {
			ShowKeyPoints = false,
			ShowHandles = false,
			ShowPolyLine = true,
			StopRendering = false,
			DrawMode = 4,
			Inputs = {
				Displacement = Input {
					SourceOp = "Path3Displacement",
					Source = "Value",
				},
				PolyLine = Input {
					Value = Polyline {
						Closed = false,
						Points = {
							{ Linear = true, LockY = true, X = -0.187467, Y = -0.222106, },
							{ Linear = true, LockY = true, X = -0.172266, Y = -0.252871, },
							{ Linear = true, LockY = true, X = -0.154549, Y = -0.281576, },
							{ Linear = true, LockY = true, X = -0.134594, Y = -0.307358, },
						},
					},
				},
			},
		},
		Path4 = PolyPath {
			ShowKeyPoints = false,
			ShowHandles = false,
			ShowPolyLine = true,
			StopRendering = false,
			DrawMode = 4,
			Inputs = {
				Displacement = Input {
					SourceOp = "Path4Displacement",
					Source = "Value",
				},
				PolyLine = Input {
					Value = Polyline {
						Closed = false,
						Points = {
							{ Linear = true, LockY = true, X = -0.03125, Y = -0.212963, },
							{ Linear = true, LockY = true, X = -0.0127033, Y = -0.208446, },
							{ Linear = true, LockY = true, X = 0.00519851, Y = -0.199111, },
							{ Linear = true, LockY = true, X = 0.0220483, Y = -0.185098, },
						},
					},
				},
			},
		},
		Path1Displacement = BezierSpline {
			SplineName = "Path1Displacement",
			NameSet = true,
			KeyFrames = {
				[1003] = { 0, Flags = { Linear = true, LockedY = true, }, },
				[1004] = { 0.261777, Flags = { Linear = true, LockedY = true, }, },
				[1005] = { 0.588521, Flags = { Linear = true, LockedY = true, }, },
				[1006] = { 1, Flags = { Linear = true, LockedY = true, }, },
			},
		},
		Path2Displacement = BezierSpline {
			SplineName = "Path2Displacement",
			NameSet = true,
			KeyFrames = {
				[1003] = { 0, Flags = { Linear = true, LockedY = true, }, },
				[1004] = { 0.347429, Flags = { Linear = true, LockedY = true, }, },
				[1005] = { 0.684195, Flags = { Linear = true, LockedY = true, }, },
				[1006] = { 1, Flags = { Linear = true, LockedY = true, }, },
			},
		},
		Path3Displacement = BezierSpline {
			SplineName = "Path3Displacement",
			NameSet = true,
			KeyFrames = {
				[1003] = { 0, Flags = { Linear = true, LockedY = true, }, },
				[1004] = { 0.340936, Flags = { Linear = true, LockedY = true, }, },
				[1005] = { 0.676079, Flags = { Linear = true, LockedY = true, }, },
				[1006] = { 1, Flags = { Linear = true, LockedY = true, }, },
			},
		},
		Path4Displacement = BezierSpline {
			SplineName = "Path4Displacement",
			NameSet = true,
			KeyFrames = {
				[1003] = { 0, Flags = { Linear = true, LockedY = true, }, },
				[1004] = { 0.311942, Flags = { Linear = true, LockedY = true, }, },
				[1005] = { 0.641873, Flags = { Linear = true, LockedY = true, }, },
				[1006] = { 1, Flags = { Linear = true, LockedY = true, }, },
			},
		},
	},
}

